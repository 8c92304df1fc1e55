// What the six feature dialogs share: a private part with the device, its
// parameter array and the dialog's own mapper, and the exported Show*
// functions' one shape.
#ifndef ORBGUI_CAMCONFIGDIALOG_P_H
#define ORBGUI_CAMCONFIGDIALOG_P_H

#include "camconfig/orbcamconfigmapper.h"
#include "common/flatentry.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>

#include <QApplication>
#include <QLayout>
#include <QWidget>

#include <type_traits>

namespace OrbGui {

// A feature the description declares but this camera does not implement
// is one it does not have: its control is not bound, and counts for nothing.
template <class P> P *implemented(P *param)
{
    if (!param)
        return nullptr;
    GenApi::INode *node = param->GetNode();
    try {
        return !node || GenApi::IsImplemented(node) ? param : nullptr;
    } catch (const GenICam::GenericException &) {
        // The camera could not say: the control is bound, and shows what a
        // read brings when there is one.
        return param;
    }
}

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
    // The camera's feature of that name and type, if it implements one.
    template <class P> P *param(const char *name) const
    {
        if (!params)
            return nullptr;
        if constexpr (std::is_same_v<P, OrbGenParam::Int>)
            return implemented(params->GetInt(name));
        else if constexpr (std::is_same_v<P, OrbGenParam::Float>)
            return implemented(params->GetFloat(name));
        else if constexpr (std::is_same_v<P, OrbGenParam::Enum>)
            return implemented(params->GetEnum(name));
        else if constexpr (std::is_same_v<P, OrbGenParam::Boolean>)
            return implemented(params->GetBoolean(name));
        else
            return implemented(params->GetCommand(name));
    }
    // A feature that is floating point on one camera and an integer on
    // another: the first of the two the camera has.
    OrbGenParam::Param *number(const char *name) const
    {
        if (OrbGenParam::Float *asFloat = param<OrbGenParam::Float>(name))
            return asFloat;
        return param<OrbGenParam::Int>(name);
    }

    OrbCam::Device *device = nullptr;
    OrbGenParam::Array *params = nullptr;
    OrbCamConfigMapper mapper;
};

// Whether the dialog has anything to show on its camera: the configuration
// window offers only those that do. Without a camera it says nothing, and
// what it said last stands.
inline void offerIf(QWidget *dialog, bool hasCamera, bool offered)
{
    if (hasCamera)
        dialog->setProperty("orbOffered", offered);
}
inline bool isOffered(const QWidget *dialog)
{
    const QVariant offered = dialog->property("orbOffered");
    return !offered.isValid() || offered.toBool();
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
