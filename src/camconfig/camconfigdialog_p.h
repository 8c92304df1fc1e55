// What the six feature dialogs share: a private part with the device, its
// parameter array and the dialog's own mapper, and the exported Show*
// functions' one shape.
#ifndef ORBGUI_CAMCONFIGDIALOG_P_H
#define ORBGUI_CAMCONFIGDIALOG_P_H

#include "camconfig/orbcamconfigmapper.h"
#include "common/flatentry.h"

#include <OrbCam/OrbCam.h>

#include <QApplication>
#include <QLayout>
#include <QWidget>

namespace OrbGui {

class CamConfigDialogPrivate {
public:
    CamConfigDialogPrivate() = default;
    virtual ~CamConfigDialogPrivate() = default;
    CamConfigDialogPrivate(const CamConfigDialogPrivate &) = delete;
    CamConfigDialogPrivate &operator=(const CamConfigDialogPrivate &) = delete;

    // Releases every control and takes the device's parameter array (null
    // for a null device or an array that cannot be had).
    OrbGenParam::Array *rebind(OrbCam::Device *newDevice)
    {
        mapper.releaseAll();
        device = newDevice;
        params = device ? device->GetParams() : nullptr;
        return params;
    }
    template <class P> P *param(const char *name) const;

    OrbCam::Device *device = nullptr;
    OrbGenParam::Array *params = nullptr;
    OrbCamConfigMapper mapper;
};

template <>
inline OrbGenParam::Int *CamConfigDialogPrivate::param<OrbGenParam::Int>(const char *name) const
{
    return params ? params->GetInt(name) : nullptr;
}
template <>
inline OrbGenParam::Enum *CamConfigDialogPrivate::param<OrbGenParam::Enum>(const char *name) const
{
    return params ? params->GetEnum(name) : nullptr;
}
template <>
inline OrbGenParam::Boolean *
CamConfigDialogPrivate::param<OrbGenParam::Boolean>(const char *name) const
{
    return params ? params->GetBoolean(name) : nullptr;
}
template <>
inline OrbGenParam::Command *
CamConfigDialogPrivate::param<OrbGenParam::Command>(const char *name) const
{
    return params ? params->GetCommand(name) : nullptr;
}

// The shape every Show* function keeps: an application object when the
// process has none, the parent found by its window id, the dialog built,
// shown, and destroyed again before returning. It runs no event loop; the
// host runs its own.
template <class Dialog> void showCamConfigDialog(OrbCam::Device *device, WId parent)
{
    ensureApplication();
    QWidget *parentWidget = parent ? QWidget::find(parent) : nullptr;
    Dialog dialog(device, parentWidget);
    dialog.show();
}

} // namespace OrbGui

#endif
