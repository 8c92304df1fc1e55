#include <OrbGui/qtorbgainslider.h>

#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>

#include "sliderbox_p.h"

namespace OrbGui {

class QtOrbGainSliderPrivate
    : public SliderBoxPrivate<QtOrbGainSlider, QtOrbDoubleSlider, QtOrbDoubleSpinBoxVal, double> {
public:
    using SliderBoxPrivate::SliderBoxPrivate;
};

QtOrbGainSlider::QtOrbGainSlider(QWidget *parent)
    : QFrame(parent)
    , d_ptr(new QtOrbGainSliderPrivate(this))
{
    d_func()->initPair(0.0, 100.0);
    setDecimals(3);
}

int QtOrbGainSlider::decimals() const
{
    return d_func()->spinbox->decimals();
}

void QtOrbGainSlider::setDecimals(int decimals)
{
    Q_D(QtOrbGainSlider);
    d->spinbox->setDecimals(decimals);
    d->slider->setDecimals(decimals);
}

ORB_DEFINE_SLIDER_BOX_MEMBERS(QtOrbGainSlider, double, QtOrbDoubleSlider, QtOrbDoubleSpinBoxVal)

} // namespace OrbGui
