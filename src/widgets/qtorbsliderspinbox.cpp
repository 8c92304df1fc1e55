#include <OrbGui/qtorbsliderspinbox.h>

#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbspinboxval.h>

#include "sliderbox_p.h"

namespace OrbGui {

class QtOrbSliderSpinBoxPrivate
    : public SliderBoxPrivate<QtOrbSliderSpinBox, QtOrbSlider, QtOrbSpinBoxVal, int> {
public:
    using SliderBoxPrivate::SliderBoxPrivate;
};

QtOrbSliderSpinBox::QtOrbSliderSpinBox(QWidget *parent)
    : QFrame(parent)
    , d_ptr(new QtOrbSliderSpinBoxPrivate(this))
{
    d_func()->initPair(0, 100);
}

ORB_DEFINE_SLIDER_BOX_MEMBERS(QtOrbSliderSpinBox, int, QtOrbSlider, QtOrbSpinBoxVal)

} // namespace OrbGui
