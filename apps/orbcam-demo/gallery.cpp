#include "gallery.h"

#include <GenApi/GenApi.h>
#include <OrbGui/qtorbdoubleslider.h>
#include <OrbGui/qtorbdoublespinboxval.h>
#include <OrbGui/qtorbgainslider.h>
#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QFormLayout>
#include <QLabel>

#include <limits>

namespace {

// The camera's integer feature `name` drives a widget with the integer
// range/value interface of the slider widgets: range, increment and value
// come from the camera and follow it (Offset X's maximum moves with the
// width), and every value the widget announces is written back. A refused
// write shows its reason and puts the camera's value back. Following the
// camera never writes to it: the widget is quiet while it is brought in line.
template <class Widget>
void bindInteger(Widget *widget, GenApi::INodeMap *map, const char *name, QLabel *status)
{
    GenApi::CIntegerPtr feature = map ? map->GetNode(name) : nullptr;
    if (!feature || !GenApi::IsReadable(feature)) {
        widget->setEnabled(false);
        return;
    }
    auto follow = [widget, feature, status]() mutable {
        try {
            const QSignalBlocker quiet(widget);
            widget->setRange(static_cast<int>(feature->GetMin()),
                             static_cast<int>(feature->GetMax()));
            widget->setSingleStep(static_cast<int>(feature->GetInc()));
            widget->setValue(static_cast<int>(feature->GetValue()));
        } catch (const GenICam::GenericException &e) {
            status->setText(QString::fromUtf8(e.GetDescription()));
        }
    };
    follow();
    // The camera calls back on the thread that made the change; the widget
    // is brought in line on its own thread.
    const GenApi::CallbackHandleType handle = GenApi::Register(
        feature->GetNode(),
        [widget, follow](GenApi::INode *) {
            QMetaObject::invokeMethod(widget, follow, Qt::QueuedConnection);
        },
        GenApi::cbPostOutsideLock);
    QObject::connect(widget, &QObject::destroyed, [handle] { GenApi::Deregister(handle); });
    QObject::connect(widget, QOverload<int>::of(&Widget::valueChanged), widget,
                     [widget, feature, name, status](int value) mutable {
                         try {
                             feature->SetValue(value);
                             status->setText(
                                 QStringLiteral("%1 = %2").arg(QLatin1String(name)).arg(value));
                         } catch (const GenICam::GenericException &e) {
                             status->setText(QString::fromUtf8(e.GetDescription()));
                             const QSignalBlocker quiet(widget);
                             widget->setValue(static_cast<int>(feature->GetValue()));
                         }
                     });
}

} // namespace

std::unique_ptr<QWidget> makeValueWidgets(GenApi::INodeMap *map)
{
    auto window = std::make_unique<QWidget>();
    window->setWindowTitle(QStringLiteral("Value widgets"));
    auto *form = new QFormLayout(window.get());
    auto *status = new QLabel(QStringLiteral("Move a control; the camera answers here."));
    status->setObjectName(QStringLiteral("status"));
    // A long error must not widen the window and move the controls under
    // the mouse: the line wraps instead.
    status->setWordWrap(true);
    status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    // Typed numbers reach the camera on Enter only: committing per keystroke
    // would write 5, then 50, then 500, and a snapping feature would turn
    // the first digit into something the user never typed.
    auto *exposure = new OrbGui::QtOrbSliderSpinBox;
    exposure->setObjectName(QStringLiteral("exposure"));
    exposure->setValidateTyping(false);
    exposure->slider()->setScaleType(OrbGui::QtOrbSlider::Logarithmic);
    bindInteger(exposure, map, "Frame_ExposureLines", status);
    form->addRow(QStringLiteral("Exposure (lines, log scale)"), exposure);

    auto *black = new OrbGui::QtOrbSliderSpinBox;
    black->setObjectName(QStringLiteral("blackLevel"));
    black->setValidate(true);
    black->setValidateTyping(false);
    bindInteger(black, map, "Frame_BlackLevel", status);
    form->addRow(QStringLiteral("Black level"), black);

    auto *width = new OrbGui::QtOrbSpinBox(Qt::Horizontal);
    width->setObjectName(QStringLiteral("width"));
    width->setValidate(true);
    width->spinBox()->setKeyboardTracking(false);
    bindInteger(width, map, "Frame_Width", status);
    form->addRow(QStringLiteral("Width (slider button)"), width);

    auto *gain = new OrbGui::QtOrbGainSlider;
    gain->setRange(0.0, 24.0);
    gain->setSingleStep(0.1);
    gain->setDecimals(1);
    gain->setValue(6.0);
    form->addRow(QStringLiteral("Gain (dB, unbound)"), gain);

    auto *height = new OrbGui::QtOrbSlider(Qt::Horizontal);
    height->setObjectName(QStringLiteral("height"));
    height->setScaleType(OrbGui::QtOrbSlider::SquareRoot);
    height->setValidate(true);
    bindInteger(height, map, "Frame_Height", status);
    form->addRow(QStringLiteral("Height (square-root scale)"), height);

    // Colour correction coefficients: unbound, the simulated cameras
    // have none.
    auto *coefficient = new OrbGui::QtOrbDoubleSlider(Qt::Horizontal);
    coefficient->setDecimals(2);
    coefficient->setSingleStep(0.01);
    coefficient->setRange(-2.0, 2.0);
    coefficient->setValidate(true);
    coefficient->setValue(1.0);
    form->addRow(QStringLiteral("Coefficient R-R"), coefficient);
    auto *coefficientBox = new OrbGui::QtOrbDoubleSpinBoxVal;
    coefficientBox->setDecimals(2);
    coefficientBox->setRange(-2.0, 2.0);
    coefficientBox->setSingleStep(0.25);
    coefficientBox->setValidate(true);
    coefficientBox->setValidateTyping(false);
    coefficientBox->setValue(-0.25);
    form->addRow(QStringLiteral("Coefficient R-G (Enter commits)"), coefficientBox);

    auto *offset = new OrbGui::QtOrbSpinBoxVal;
    offset->setObjectName(QStringLiteral("offsetX"));
    offset->setValidate(true);
    offset->setValidateTyping(false);
    bindInteger(offset, map, "Frame_OffsetX", status);
    form->addRow(QStringLiteral("Offset X (snaps to increment on Enter)"), offset);

    auto *big = new OrbGui::QtOrbSpinBoxVal64;
    big->setRange(0, std::numeric_limits<qlonglong>::max());
    big->setValue(1LL << 40);
    big->setKeyboardTracking(false);
    form->addRow(QStringLiteral("64-bit value"), big);
    form->addRow(status);

    window->resize(560, 460);
    return window;
}
