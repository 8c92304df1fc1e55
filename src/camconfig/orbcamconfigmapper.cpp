#include "orbcamconfigmapper.h"

#include "genparam/unittext.h"

#include <GenApi/GenApi.h>

#include <OrbGui/qtorbslider.h>
#include <OrbGui/qtorbsliderspinbox.h>
#include <OrbGui/qtorbspinbox.h>
#include <OrbGui/qtorbspinboxval.h>
#include <OrbGui/qtorbspinboxval64.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTimer>

#include <cmath>
#include <type_traits>

namespace OrbGui {

namespace {

QString nameOf(const OrbGenParam::Param *param)
{
    return QString::fromUtf8(param->GetName());
}

bool writable(const OrbGenParam::Param *param)
{
    return param->IsAvailable() && param->IsWritable();
}

void disconnectAll(QObject *object)
{
    QObject::disconnect(object, nullptr, nullptr, nullptr);
}

long identity(long value)
{
    return value;
}

// A control without a feature shows nothing: a number or a choice left in
// it from the form or an earlier camera would read as the camera's.
void blank(QWidget *widget)
{
    if (!widget)
        return;
    if (auto *box = qobject_cast<QComboBox *>(widget)) {
        const QSignalBlocker quiet(box);
        box->clear();
    } else if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
        const QSignalBlocker quiet(button);
        if (button->isCheckable())
            button->setChecked(false);
    } else if (auto *edit = qobject_cast<QLineEdit *>(widget)) {
        const QSignalBlocker quiet(edit);
        edit->clear();
    } else {
        // The spin boxes of a compound control, or the control itself. A
        // cleared spin box keeps its value, announces nothing and is not
        // filled in again until it is given a value.
        QList<QAbstractSpinBox *> boxes = widget->findChildren<QAbstractSpinBox *>();
        if (auto *itself = qobject_cast<QAbstractSpinBox *>(widget))
            boxes.append(itself);
        for (QAbstractSpinBox *spin : boxes) {
            const QSignalBlocker quiet(spin);
            spin->clear();
        }
    }
}

void blank(QButtonGroup *group)
{
    if (!group)
        return;
    const QSignalBlocker quiet(group);
    const bool exclusive = group->exclusive();
    group->setExclusive(false);
    for (QAbstractButton *button : group->buttons()) {
        const QSignalBlocker quietButton(button);
        button->setChecked(false);
    }
    group->setExclusive(exclusive);
}

// The camera's value as it is, not moved onto the control's step grid: the
// grid is for what the user enters.
template <class Control> void showUnsnapped(Control *control, int value)
{
    if constexpr (std::is_same_v<Control,
                                 QtOrbSpinBox> || std::is_same_v<Control, QtOrbSliderSpinBox>) {
        const bool validating = control->validate();
        control->setValidate(false);
        control->setValue(value);
        control->setValidate(validating);
    } else {
        control->setValue(value);
    }
}

// A switch of the standard names is an enumeration of Off and On, with
// values of the vendor's choosing: the names say which is which.
bool hasOnOff(const OrbGenParam::Enum *param)
{
    bool on = false, off = false;
    for (size_t i = 0; i < param->GetEntryCount(); ++i)
        if (const OrbGenParam::EnumEntry *entry = param->GetEntry(i)) {
            on = on || qstrcmp(entry->GetName(), "On") == 0;
            off = off || qstrcmp(entry->GetName(), "Off") == 0;
        }
    return on && off;
}

// What a binding holds: a radio group has no widget of its own.
const void *controlOf(const OrbCamConfigMapData &data)
{
    return data.type == OrbCamConfigMapData::RadioGroup ? data.aux : data.widget;
}

} // namespace

OrbCamConfigMapper::OrbCamConfigMapper()
    : m_context(new QObject)
    , m_handOff(new GuiHandOff(m_context.get()))
{
}

// Tables only: the owner unbinds (while parameters and widgets live) first.
// Refreshes still on their way are dropped with the hand-off.
OrbCamConfigMapper::~OrbCamConfigMapper() = default;

bool OrbCamConfigMapper::begin(OrbGenParam::Param *param, QWidget *widget,
                               const QVector<QWidget *> &companions,
                               const OrbCamConfigMapData &main)
{
    if (!param) {
        if (widget) {
            widget->setEnabled(false);
            blank(widget);
        }
        for (QWidget *companion : companions)
            companion->setEnabled(false);
        return false;
    }
    param->UnregisterEventSink(this);
    if (main.type == OrbCamConfigMapData::RadioGroup)
        disconnectAll(static_cast<QButtonGroup *>(main.aux));
    else
        disconnectAll(widget);
    const bool enabled = writable(param);
    if (widget)
        widget->setEnabled(enabled);
    for (QWidget *companion : companions)
        companion->setEnabled(enabled);
    const QString name = nameOf(param);
    const auto it = controls.constFind(name);
    if (it != controls.constEnd() && !it->isEmpty() && controlOf(it->first()) != controlOf(main))
        unmapControl(it->first());
    // Refreshes of the earlier binding that are still on their way would
    // reach the released control.
    m_handOff->invalidate();
    QVector<OrbCamConfigMapData> bound { main };
    for (QWidget *companion : companions)
        bound.push_back({ OrbCamConfigMapData::Companion, companion, nullptr });
    controls.insert(name, bound);
    m_params.insert(name, param);
    return true;
}

bool OrbCamConfigMapper::mapIntParam(OrbGenParam::Int *param, QtOrbSpinBox *box)
{
    return mapIntParam(param, box, QVector<QWidget *>());
}

bool OrbCamConfigMapper::mapIntParam(OrbGenParam::Int *param, QtOrbSpinBox *box,
                                     const QVector<QWidget *> &companions)
{
    if (!begin(param, box, companions, { OrbCamConfigMapData::OrbSpinBox, box, nullptr }))
        return false;
    box->setValidate(true);
    box->setValidateTyping(false);
    updateSpinBox(param, box);
    QObject::connect(box, QOverload<int>::of(&QtOrbSpinBox::valueChanged), box,
                     [this, alive = guard(), param, box](int value) {
                         if (!alive.expired() && mayWrite(param))
                             showErrorMessage(param->SetValue(value), box, param);
                     });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapIntParam(OrbGenParam::Int *param, QtOrbSliderSpinBox *box,
                                     IOrbCamConfigIntConverter *converter)
{
    if (!begin(param, box, {}, { OrbCamConfigMapData::OrbSliderSpinBox, box, converter }))
        return false;
    box->setValidate(true);
    box->setValidateTyping(false);
    updateSliderSpinBox(param, box, converter);
    QObject::connect(box, QOverload<int>::of(&QtOrbSliderSpinBox::valueChanged), box,
                     [this, alive = guard(), param, box, converter](int value) {
                         if (alive.expired() || !mayWrite(param))
                             return;
                         const long device
                             = converter ? converter->ToDevice(value, param) : identity(value);
                         showErrorMessage(param->SetValue(device), box, param);
                     });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapNumberParam(OrbGenParam::Param *param, QDoubleSpinBox *box,
                                        const QVector<QWidget *> &companions)
{
    auto *asFloat = dynamic_cast<OrbGenParam::Float *>(param);
    auto *asInt = dynamic_cast<OrbGenParam::Int *>(param);
    if (!asFloat && !asInt)
        param = nullptr;
    if (!begin(param, box, companions, { OrbCamConfigMapData::DoubleSpinBox, box, nullptr }))
        return false;
    // Only a finished entry is the user's choice, not every digit typed.
    box->setKeyboardTracking(false);
    updateDoubleSpinBox(param, box);
    QObject::connect(box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), box,
                     [this, alive = guard(), param, asFloat, asInt, box](double value) {
                         if (alive.expired() || !mayWrite(param))
                             return;
                         showErrorMessage(asFloat ? asFloat->SetValue(value)
                                                  : asInt->SetValue(std::llround(value)),
                                          box, param);
                     });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapEnumParam(OrbGenParam::Enum *param, QComboBox *box)
{
    if (!begin(param, box, {}, { OrbCamConfigMapData::ComboBox, box, nullptr }))
        return false;
    {
        const QSignalBlocker quiet(box);
        box->clear();
        for (size_t i = 0; i < param->GetEntryCount(); ++i)
            if (OrbGenParam::EnumEntry *entry = param->GetEntry(i))
                box->addItem(QString::fromUtf8(entry->GetName()));
    }
    updateComboBox(param, box);
    QObject::connect(box, &QComboBox::currentTextChanged, box,
                     [this, alive = guard(), param, box](const QString &text) {
                         if (!alive.expired() && mayWrite(param))
                             showErrorMessage(param->SetValueByName(text.toUtf8().constData()), box,
                                              param);
                     });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapEnumParam(OrbGenParam::Enum *param, QButtonGroup *group)
{
    const QList<QAbstractButton *> buttons = group ? group->buttons() : QList<QAbstractButton *>();
    if (!param) {
        for (QAbstractButton *button : buttons)
            button->setEnabled(false);
        blank(group);
        return false;
    }
    if (!begin(param, nullptr, {}, { OrbCamConfigMapData::RadioGroup, nullptr, group }))
        return false;
    const bool enabled = writable(param);
    const int entries = static_cast<int>(param->GetEntryCount());
    for (int i = 0; i < buttons.size(); ++i) {
        QAbstractButton *button = buttons[i];
        button->show();
        button->setEnabled(enabled);
        if (i >= entries) {
            button->hide();
            continue;
        }
        OrbGenParam::EnumEntry *entry = param->GetEntry(static_cast<size_t>(i));
        if (!entry) {
            button->hide();
            continue;
        }
        button->setText(QString::fromUtf8(entry->GetName()));
        group->setId(button, static_cast<int>(entry->GetValue()));
    }
    updateRadioButtons(param, group);
    QObject::connect(group, &QButtonGroup::idToggled, group,
                     [this, alive = guard(), param, group](int id, bool checked) {
                         // Only the newly checked button writes; the one unchecked is quiet.
                         if (checked && !alive.expired() && mayWrite(param))
                             showErrorMessage(param->SetValue(id), group->button(id), param);
                     });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapEnumParam(OrbGenParam::Enum *param, QTabWidget *tabs)
{
    if (!begin(param, tabs, {}, { OrbCamConfigMapData::TabWidget, tabs, nullptr }))
        return false;
    const QString name = nameOf(param);
    const int entries = static_cast<int>(param->GetEntryCount());
    {
        const QSignalBlocker quiet(tabs);
        for (int i = tabs->count() - 1; i >= entries; --i) {
            tabs->widget(i)->hide();
            tabs->removeTab(i);
        }
        QHash<QString, int> &indexes = tabIndexes[name];
        indexes.clear();
        for (int i = 0; i < tabs->count(); ++i) {
            OrbGenParam::EnumEntry *entry = param->GetEntry(static_cast<size_t>(i));
            const QString text = entry ? QString::fromUtf8(entry->GetName()) : QString();
            tabs->setTabText(i, text);
            indexes.insert(text, i);
        }
    }
    updateTabWidget(param, tabs);
    QObject::connect(
        tabs, &QTabWidget::currentChanged, tabs, [this, alive = guard(), param, tabs](int index) {
            if (!alive.expired() && mayWrite(param))
                showErrorMessage(param->SetValueByName(tabs->tabText(index).toUtf8().constData()),
                                 tabs, param);
        });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapEnumParam(OrbGenParam::Enum *param, QCheckBox *box)
{
    if (!begin(param, box, {}, { OrbCamConfigMapData::CheckBox, box, nullptr }))
        return false;
    refreshElement(param, controls.value(nameOf(param)).first());
    QObject::connect(
        box, &QCheckBox::clicked, box, [this, alive = guard(), param, box](bool checked) {
            if (alive.expired() || !mayWrite(param))
                return;
            const OrbCamErr err = hasOnOff(param) ? param->SetValueByName(checked ? "On" : "Off")
                                                  : param->SetValue(checked ? 1 : 0);
            showErrorMessage(err, box, param);
        });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapBooleanParam(OrbGenParam::Boolean *param, QAbstractButton *button)
{
    if (!begin(param, button, {}, { OrbCamConfigMapData::BooleanButton, button, nullptr }))
        return false;
    refreshElement(param, controls.value(nameOf(param)).first());
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [this, alive = guard(), param, button](bool checked) {
                         if (!alive.expired() && mayWrite(param))
                             showErrorMessage(param->SetValue(checked), button, param);
                     });
    param->RegisterEventSink(this);
    return true;
}

bool OrbCamConfigMapper::mapCommandParam(OrbGenParam::Command *param, QPushButton *button,
                                         QTimer *timer)
{
    if (!begin(param, button, {}, { OrbCamConfigMapData::CommandButton, button, timer }))
        return false;
    QObject::connect(button, &QPushButton::clicked, button,
                     [this, alive = guard(), param, button, timer] {
                         if (alive.expired() || !mayWrite(param))
                             return;
                         showErrorMessage(param->Execute(), button, param);
                         if (timer) {
                             button->setEnabled(false);
                             timer->start();
                         }
                     });
    param->RegisterEventSink(this);
    return true;
}

void OrbCamConfigMapper::unmapParam(OrbGenParam::Param *param, QWidget *widget)
{
    if (param) {
        const QString name = nameOf(param);
        const auto it = controls.constFind(name);
        if (it != controls.constEnd()) {
            if (!it->isEmpty())
                unmapControl(it->first());
            param->UnregisterEventSink(this);
            controls.remove(name);
            m_params.remove(name);
            tabIndexes.remove(name);
            m_handOff->invalidate();
        }
    }
    if (widget) {
        widget->setEnabled(false);
        blank(widget);
    }
}

void OrbCamConfigMapper::unmapControl(const OrbCamConfigMapData &data)
{
    if (data.type == OrbCamConfigMapData::RadioGroup) {
        if (auto *group = static_cast<QButtonGroup *>(data.aux)) {
            disconnectAll(group);
            for (QAbstractButton *button : group->buttons())
                button->setEnabled(false);
            blank(group);
        }
        return;
    }
    if (data.widget) {
        data.widget->setEnabled(false);
        disconnectAll(data.widget);
        if (data.type != OrbCamConfigMapData::Companion)
            blank(data.widget);
    }
}

void OrbCamConfigMapper::releaseAll()
{
    for (auto it = m_params.constBegin(); it != m_params.constEnd(); ++it)
        it.value()->UnregisterEventSink(this);
    for (const QVector<OrbCamConfigMapData> &bound : qAsConst(controls))
        for (const OrbCamConfigMapData &data : bound)
            unmapControl(data);
    m_handOff->invalidate();
    controls.clear();
    tabIndexes.clear();
    texts.clear();
    m_params.clear();
}

// A feature that cannot be written now (the camera went away, another
// application holds it) must not leave its control showing a value the
// camera does not have: the controls are brought in line with the camera,
// which disables them when the feature is gone. No message: the user did not
// fail, the camera is not there.
bool OrbCamConfigMapper::mayWrite(OrbGenParam::Param *param)
{
    if (writable(param))
        return !beforeWrite || beforeWrite(param);
    refresh(nameOf(param));
    return false;
}

void OrbCamConfigMapper::refreshAll()
{
    const QStringList names = controls.keys();
    for (const QString &name : names)
        refresh(name);
}

void OrbCamConfigMapper::clearControl(QWidget *widget)
{
    blank(widget);
}

bool OrbCamConfigMapper::isBound(const QWidget *widget) const
{
    for (const QVector<OrbCamConfigMapData> &bound : controls)
        if (!bound.isEmpty() && bound.first().widget == widget)
            return true;
    return false;
}

bool OrbCamConfigMapper::controlsWritable(const QWidget *widget) const
{
    for (auto it = controls.constBegin(); it != controls.constEnd(); ++it)
        if (!it->isEmpty() && it->first().widget == widget)
            if (OrbGenParam::Param *param = m_params.value(it.key()))
                return writable(param);
    return false;
}

template <class Control>
void OrbCamConfigMapper::refreshInt(OrbGenParam::Int *param, Control *control,
                                    IOrbCamConfigIntConverter *converter)
{
    if (!param || !control)
        return;
    auto conv = [param, converter](int64_t value) -> qint64 {
        return converter ? converter->ToControl(static_cast<long>(value), param) : value;
    };
    const qint64 minimum = conv(param->GetMin());
    const qint64 maximum = qMin(conv(param->GetMax()), maxValue);
    qint64 step = conv(param->GetInc());
    if (step == 0)
        step = 1;
    const qint64 value = qMin(conv(param->GetValue()), maxValue);
    // Filling a control is no user's change: nothing goes back to the camera.
    const QSignalBlocker quiet(control);
    const auto narrow
        = [](qint64 v) { return static_cast<int>(qBound<qint64>(INT_MIN, v, INT_MAX)); };
    control->setRange(narrow(minimum), narrow(maximum));
    control->setSingleStep(narrow(step));
    showUnsnapped(control, narrow(value));
}

void OrbCamConfigMapper::updateDoubleSpinBox(OrbGenParam::Param *param, QDoubleSpinBox *box)
{
    if (!param || !box)
        return;
    double minimum = 0, maximum = 0, increment = 0, value = 0;
    int decimals = 0;
    QString unit;
    if (auto *asFloat = dynamic_cast<OrbGenParam::Float *>(param)) {
        minimum = asFloat->GetMin();
        maximum = asFloat->GetMax();
        increment = asFloat->GetInc();
        value = asFloat->GetValue();
        decimals = 2;
        if (auto *node = dynamic_cast<GenApi::IFloat *>(param->GetNode())) {
            // Descriptions that give no precision get GenICam's six digits,
            // more than any reading of a camera means.
            decimals = static_cast<int>(qBound<int64_t>(0, node->GetDisplayPrecision(), 3));
            unit = QString::fromUtf8(node->GetUnit().c_str());
        }
        // A step finer than the shown decimals could not be entered.
        if (increment > 0)
            while (decimals < 6 && increment < std::pow(10.0, -decimals) * 0.999)
                ++decimals;
    } else if (auto *asInt = dynamic_cast<OrbGenParam::Int *>(param)) {
        minimum = static_cast<double>(asInt->GetMin());
        maximum = static_cast<double>(asInt->GetMax());
        increment = static_cast<double>(asInt->GetInc());
        value = static_cast<double>(asInt->GetValue());
        if (auto *node = dynamic_cast<GenApi::IInteger *>(param->GetNode()))
            unit = QString::fromUtf8(node->GetUnit().c_str());
    } else {
        return;
    }
    const QSignalBlocker quiet(box);
    box->setDecimals(decimals);
    box->setRange(minimum, maximum);
    box->setSingleStep(increment > 0 ? increment : std::pow(10.0, -qMin(decimals, 2)));
    box->setSuffix(unit.isEmpty() ? QString() : QLatin1Char(' ') + shownUnit(unit));
    box->setValue(value);
}

void OrbCamConfigMapper::updateSpinBox(OrbGenParam::Int *param, QtOrbSpinBox *box)
{
    refreshInt(param, box, nullptr);
}

void OrbCamConfigMapper::updateSliderSpinBox(OrbGenParam::Int *param, QtOrbSliderSpinBox *box,
                                             IOrbCamConfigIntConverter *converter)
{
    refreshInt(param, box, converter);
}

void OrbCamConfigMapper::updateSlider(OrbGenParam::Int *param, QSlider *slider,
                                      IOrbCamConfigIntConverter *converter)
{
    refreshInt(param, slider, converter);
}

void OrbCamConfigMapper::updateComboBox(OrbGenParam::Enum *param, QComboBox *box)
{
    if (!param || !box)
        return;
    const QSignalBlocker quiet(box);
    if (auto *model = qobject_cast<QStandardItemModel *>(box->model())) {
        for (int i = 0; i < box->count(); ++i) {
            OrbGenParam::EnumEntry *entry = param->GetEntry(static_cast<size_t>(i));
            if (QStandardItem *item = model->item(i))
                item->setEnabled(entry && entry->IsAvailable());
        }
    }
    box->setCurrentText(QString::fromUtf8(param->GetValueName()));
}

void OrbCamConfigMapper::updateRadioButtons(OrbGenParam::Enum *param, QButtonGroup *group)
{
    if (!param || !group)
        return;
    const QSignalBlocker quiet(group);
    if (QAbstractButton *current = group->button(static_cast<int>(param->GetValue())))
        current->setChecked(true);
    for (size_t i = 0; i < param->GetEntryCount(); ++i)
        if (OrbGenParam::EnumEntry *entry = param->GetEntry(i))
            if (QAbstractButton *button = group->button(static_cast<int>(entry->GetValue())))
                button->setEnabled(entry->IsAvailable());
}

void OrbCamConfigMapper::updateTabWidget(OrbGenParam::Enum *param, QTabWidget *tabs)
{
    if (!param || !tabs)
        return;
    const QString name = nameOf(param);
    const QHash<QString, int> indexes = tabIndexes.value(name);
    const QSignalBlocker quiet(tabs);
    const auto it = indexes.constFind(QString::fromUtf8(param->GetValueName()));
    if (it != indexes.constEnd())
        tabs->setCurrentIndex(it.value());
    for (int i = 0; i < tabs->count(); ++i) {
        OrbGenParam::EnumEntry *entry = param->GetEntry(static_cast<size_t>(i));
        if (QWidget *page = tabs->widget(i))
            page->setEnabled(entry && entry->IsAvailable());
    }
}

void OrbCamConfigMapper::refreshElement(OrbGenParam::Param *param, const OrbCamConfigMapData &data)
{
    auto *asInt = dynamic_cast<OrbGenParam::Int *>(param);
    auto *asEnum = dynamic_cast<OrbGenParam::Enum *>(param);
    switch (data.type) {
    case OrbCamConfigMapData::ComboBox:
        updateComboBox(asEnum, qobject_cast<QComboBox *>(data.widget));
        break;
    case OrbCamConfigMapData::CheckBox:
        if (auto *box = qobject_cast<QCheckBox *>(data.widget); box && asEnum) {
            const QSignalBlocker quiet(box);
            box->setChecked(hasOnOff(asEnum) ? qstrcmp(asEnum->GetValueName(), "On") == 0
                                             : asEnum->GetValue() != 0);
        }
        break;
    case OrbCamConfigMapData::RadioGroup:
        updateRadioButtons(asEnum, static_cast<QButtonGroup *>(data.aux));
        break;
    case OrbCamConfigMapData::TabWidget:
        updateTabWidget(asEnum, qobject_cast<QTabWidget *>(data.widget));
        break;
    case OrbCamConfigMapData::BooleanButton:
        if (auto *button = qobject_cast<QAbstractButton *>(data.widget)) {
            if (auto *asBool = dynamic_cast<OrbGenParam::Boolean *>(param)) {
                const QSignalBlocker quiet(button);
                button->setChecked(asBool->GetValue());
            }
        }
        break;
    case OrbCamConfigMapData::LineEdit:
        if (auto *edit = qobject_cast<QLineEdit *>(data.widget); edit && asInt) {
            const qint64 value = qMin<qint64>(asInt->GetValue(), maxValue);
            if (auto *validator
                = qobject_cast<QIntValidator *>(const_cast<QValidator *>(edit->validator())))
                validator->setRange(
                    static_cast<int>(qBound<qint64>(INT_MIN, asInt->GetMin(), INT_MAX)),
                    static_cast<int>(qMin<qint64>(asInt->GetMax(), maxValue)));
            const QSignalBlocker quiet(edit);
            edit->setText(QString::number(value));
        }
        break;
    case OrbCamConfigMapData::DoubleSpinBox:
        updateDoubleSpinBox(param, qobject_cast<QDoubleSpinBox *>(data.widget));
        break;
    case OrbCamConfigMapData::SpinBox:
        refreshInt(asInt, qobject_cast<QSpinBox *>(data.widget), nullptr);
        break;
    case OrbCamConfigMapData::OrbSpinBox:
        refreshInt(asInt, qobject_cast<QtOrbSpinBox *>(data.widget), nullptr);
        break;
    case OrbCamConfigMapData::Slider:
        refreshInt(asInt, qobject_cast<QSlider *>(data.widget),
                   static_cast<IOrbCamConfigIntConverter *>(data.aux));
        break;
    case OrbCamConfigMapData::OrbSliderSpinBox:
        refreshInt(asInt, qobject_cast<QtOrbSliderSpinBox *>(data.widget),
                   static_cast<IOrbCamConfigIntConverter *>(data.aux));
        break;
    default:
        break;
    }
}

void OrbCamConfigMapper::OnParameterUpdate(OrbGenParam::Param *param)
{
    if (!param)
        return;
    // The name is read here, while the camera API keeps the parameter
    // alive; the GUI thread looks the binding up by name, as it stands then.
    const QString name = nameOf(param);
    m_handOff->post([this, name, param] {
        // A control a dialog placed into the table itself (a line edit, a
        // plain spin box or slider) has no binding that recorded its
        // parameter: the event names it. Events from before an unbinding
        // never come this far.
        if (controls.contains(name) && !m_params.contains(name))
            m_params.insert(name, param);
        refresh(name);
    });
}

void OrbCamConfigMapper::refresh(const QString &name)
{
    const auto it = controls.constFind(name);
    OrbGenParam::Param *param = m_params.value(name);
    if (it == controls.constEnd() || !param)
        return;
    const QVector<OrbCamConfigMapData> bound = *it;
    auto enable = [&bound](bool enabled) {
        for (const OrbCamConfigMapData &data : bound) {
            if (data.type == OrbCamConfigMapData::RadioGroup) {
                if (auto *group = static_cast<QButtonGroup *>(data.aux))
                    for (QAbstractButton *button : group->buttons())
                        button->setEnabled(enabled);
            } else if (data.widget) {
                data.widget->setEnabled(enabled);
            }
        }
    };
    if (!param->IsAvailable()) {
        enable(false);
        if (afterRefresh)
            afterRefresh();
        return;
    }
    if (param->IsReadable())
        for (const OrbCamConfigMapData &data : bound)
            refreshElement(param, data);
    // Last, and over the per-entry enabling of radio buttons: a writable
    // enumeration leaves all its buttons enabled.
    enable(param->IsWritable());
    if (afterRefresh)
        afterRefresh();
}

QString OrbCamConfigMapper::errorDescription(OrbCamErr code)
{
    switch (code) {
    case -40001:
        return QObject::tr("Unknown error");
    case -40002:
        return QObject::tr("File not found");
    case -40003:
        return QObject::tr("File read error");
    case -40004:
        return QObject::tr("Wrong configuration");
    case -40005:
        return QObject::tr("Invalid index");
    case -40006:
        return QObject::tr("No device");
    case -40007:
        return QObject::tr("Invalid argument");
    case -40051:
        return QObject::tr("Invalid state");
    case -40101:
        return QObject::tr("Flash erase error");
    case -40200:
        return QObject::tr("GenICam: Generic error");
    case -40201:
        return QObject::tr("GenICam: Tree error");
    case -40202:
        return QObject::tr("GenICam: Access error");
    case -40203:
        return QObject::tr("GenICam: Parameter type is invalid");
    case -40204:
        return QObject::tr("GenICam: Parameter is out of range");
    case -40205:
        return QObject::tr("GenICam: Unknown param");
    case -40206:
        return QObject::tr("GenICam: Invalid argument");
    default:
        return QObject::tr("Unknown code");
    }
}

void OrbCamConfigMapper::showErrorMessage(OrbCamErr code, QWidget *parent,
                                          OrbGenParam::Param *param)
{
    if (code == 0)
        return;
    QMessageBox box(QMessageBox::Critical, QString(),
                    QObject::tr("Error while working with '%1' parameter!\r\nDescription: %2")
                        .arg(param ? nameOf(param) : QString(), errorDescription(code)),
                    QMessageBox::Ok, parent);
    box.setObjectName(QStringLiteral("mapperError"));
    box.exec();
}

// The pop-up lies along the box's row: a vertical one long enough to be of
// use covered the rows above it. The box's size is the least it takes; the
// box makes it long enough for its range.
void OrbCamConfigMapper::resizeVerticalSlider(QtOrbSpinBox *box)
{
    if (!box)
        return;
    box->setSliderOrientation(Qt::Horizontal);
    QSize size = box->size();
    if (!size.isValid())
        size = box->geometry().size();
    int height = size.height();
    if (QLabel *label = box->leftLabel())
        height -= label->height();
    box->resizeSlider(size.width(), height);
}

} // namespace OrbGui
