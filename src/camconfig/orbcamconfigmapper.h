// The engine that binds ordinary Qt controls to named camera features for
// the configuration window and the feature dialogs: it fills a control from
// its parameter (value, limits, increment, entries), writes every change the
// user makes back, reports a failed write, follows the parameter's change
// events and enables the control by the parameter's availability and
// writability.
//
// Ownership: the mapper owns no parameter and no widget; unbind
// (unmapParam, releaseAll) before either goes away. Its destructor neither
// unregisters from parameters nor touches widgets.
//
// Threads: everything on the GUI thread, except OnParameterUpdate, which the
// camera API calls on whatever thread caused the change; it hands the
// refresh to the GUI thread without blocking, and a refresh handed over
// before an unbinding, a rebinding or the mapper's destruction never runs.
#ifndef ORBGUI_ORBCAMCONFIGMAPPER_H
#define ORBGUI_ORBCAMCONFIGMAPPER_H

#include "common/guihandoff.h"

#include <OrbCam/OrbCamErr.h>
#include <OrbCam/OrbGenParam.h>

#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QPushButton;
class QSlider;
class QTabWidget;
class QTimer;
class QWidget;

namespace OrbGui {

class QtOrbSliderSpinBox;
class QtOrbSpinBox;

// Shows a device value in other units and back (the frame A/B dialog shows
// times). Without one, a control shows the device's numbers.
class IOrbCamConfigIntConverter {
public:
    virtual long ToControl(long value, OrbGenParam::Int *param) = 0;
    virtual long ToDevice(long value, OrbGenParam::Int *param) = 0;

protected:
    ~IOrbCamConfigIntConverter() = default;
};

// One binding of one widget.
struct OrbCamConfigMapData {
    enum Type : qint32 {
        Companion = -1, // follows the main control's enabled state only
        ComboBox = 0, // QComboBox, Enum
        CheckBox = 1, // QCheckBox, Enum (checked: entry On, or value not 0 without On/Off)
        RadioGroup = 2, // QButtonGroup in aux, Enum (button id = entry value)
        TabWidget = 3, // QTabWidget, Enum
        CommandButton = 4, // QPushButton, Command (aux: an optional QTimer)
        BooleanButton = 5, // QAbstractButton, Boolean
        LineEdit = 6, // QLineEdit with a QIntValidator, Int
        SpinBox = 7, // QSpinBox, Int
        OrbSpinBox = 8, // QtOrbSpinBox, Int
        Slider = 9, // QSlider, Int (aux: converter)
        OrbSliderSpinBox = 10, // QtOrbSliderSpinBox, Int (aux: converter)
        DoubleSpinBox = 11, // QDoubleSpinBox, Float or Int
    };
    qint32 type;
    QWidget *widget;
    void *aux;
};

class OrbCamConfigMapper : public OrbGenParam::ParamEventSink {
public:
    OrbCamConfigMapper();
    ~OrbCamConfigMapper() override;
    OrbCamConfigMapper(const OrbCamConfigMapper &) = delete;
    OrbCamConfigMapper &operator=(const OrbCamConfigMapper &) = delete;

    // Each binding returns true when it was made; a null parameter disables
    // the widget (and its companions) and returns false. A feature bound
    // again leaves its earlier control disabled and disconnected.
    bool mapIntParam(OrbGenParam::Int *param, QtOrbSpinBox *box);
    bool mapIntParam(OrbGenParam::Int *param, QtOrbSpinBox *box,
                     const QVector<QWidget *> &companions);
    bool mapIntParam(OrbGenParam::Int *param, QtOrbSliderSpinBox *box,
                     IOrbCamConfigIntConverter *converter);
    // A floating-point or an integer feature (the standard features are
    // one or the other by vendor). Decimals from the feature's display
    // precision and increment, none for an integer; the range and the step
    // from the feature; the box's suffix is the unit.
    bool mapNumberParam(OrbGenParam::Param *param, QDoubleSpinBox *box,
                        const QVector<QWidget *> &companions = {});
    bool mapEnumParam(OrbGenParam::Enum *param, QComboBox *box);
    bool mapEnumParam(OrbGenParam::Enum *param, QButtonGroup *group);
    bool mapEnumParam(OrbGenParam::Enum *param, QTabWidget *tabs);
    bool mapEnumParam(OrbGenParam::Enum *param, QCheckBox *box);
    bool mapBooleanParam(OrbGenParam::Boolean *param, QAbstractButton *button);
    // With a timer, a click disables the button and starts the timer; the
    // dialog enables the button again when it fires.
    bool mapCommandParam(OrbGenParam::Command *param, QPushButton *button, QTimer *timer);

    // Removes the feature's binding (and stops listening to it); `widget` is
    // disabled and emptied in every case. A control left without a feature
    // (a null parameter given to a binding, a control released) is disabled
    // and shows no value.
    void unmapParam(OrbGenParam::Param *param, QWidget *widget);
    // Disables one control and disconnects its signals (a radio group: all
    // its buttons, and the group's signals).
    void unmapControl(const OrbCamConfigMapData &data);
    // Unbinds every feature, releases every control and empties the tables.
    void releaseAll();
    // Empties a control that shows no feature (the text of a spin box, the
    // entries of a combo box, the check of a button).
    static void clearControl(QWidget *widget);
    // Refreshes every bound control from its feature (GUI thread).
    void refreshAll();
    // Whether `widget` is the main control of a bound feature.
    bool isBound(const QWidget *widget) const;
    // Whether `widget` is the main control of a feature that can be written
    // now: dialog rules that enable controls act only on those.
    bool controlsWritable(const QWidget *widget) const;

    void updateSpinBox(OrbGenParam::Int *param, QtOrbSpinBox *box);
    void updateSliderSpinBox(OrbGenParam::Int *param, QtOrbSliderSpinBox *box,
                             IOrbCamConfigIntConverter *converter);
    void updateSlider(OrbGenParam::Int *param, QSlider *slider,
                      IOrbCamConfigIntConverter *converter);
    void updateDoubleSpinBox(OrbGenParam::Param *param, QDoubleSpinBox *box);
    void updateComboBox(OrbGenParam::Enum *param, QComboBox *box);
    void updateRadioButtons(OrbGenParam::Enum *param, QButtonGroup *group);
    void updateTabWidget(OrbGenParam::Enum *param, QTabWidget *tabs);

    // Any thread: refreshes the feature's controls on the GUI thread.
    void OnParameterUpdate(OrbGenParam::Param *param) override;

    // A modal message for a failed operation; nothing for code 0.
    static void showErrorMessage(OrbCamErr code, QWidget *parent, OrbGenParam::Param *param);
    // The description of an error code, as the message shows it.
    static QString errorDescription(OrbCamErr code);
    // Sizes a spin box's pop-up slider from the box (less its left label)
    // and lays it along the box's row.
    static void resizeVerticalSlider(QtOrbSpinBox *box);

    // Run after every refresh that a change event brings, on the GUI thread:
    // a dialog's own enabling rules go on top of the mapper's.
    std::function<void()> afterRefresh;
    // Run before every write a control makes, on the GUI thread: false
    // drops the write. A dialog whose feature is selected by another one
    // selects what the control stands for here.
    std::function<bool(OrbGenParam::Param *)> beforeWrite;

    QHash<QString, QVector<OrbCamConfigMapData>> controls;
    QHash<QString, QHash<QString, int>> tabIndexes;
    QMap<int, QString> texts;
    // The largest value an integer control may show: Qt's controls hold
    // 32-bit numbers.
    qint64 maxValue = 2147483647;

private:
    bool begin(OrbGenParam::Param *param, QWidget *widget, const QVector<QWidget *> &companions,
               const OrbCamConfigMapData &main);
    void refresh(const QString &name);
    bool mayWrite(OrbGenParam::Param *param);
    // The controls' handlers check it: a widget may outlive the mapper.
    std::weak_ptr<char> guard() const { return m_alive; }
    void refreshElement(OrbGenParam::Param *param, const OrbCamConfigMapData &data);
    template <class Control>
    void refreshInt(OrbGenParam::Int *param, Control *control,
                    IOrbCamConfigIntConverter *converter);

    // The parameter of each bound feature, for refreshes on the GUI thread.
    QHash<QString, OrbGenParam::Param *> m_params;
    std::unique_ptr<QObject> m_context;
    std::unique_ptr<GuiHandOff> m_handOff;
    std::shared_ptr<char> m_alive = std::make_shared<char>();
};

} // namespace OrbGui

#endif
