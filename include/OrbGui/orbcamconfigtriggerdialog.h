/// \file
/// OrbCamConfigTriggerDialog: switches the camera's trigger on or off,
/// chooses its source, edge and debounce time, and fires a software trigger
/// (offered only while the trigger is on and its source is "Software").
/// See OrbCamConfigDialog for what the feature dialogs share.
#ifndef ORBGUI_ORBCAMCONFIGTRIGGERDIALOG_H
#define ORBGUI_ORBCAMCONFIGTRIGGERDIALOG_H

#include <OrbGui/orbcamconfigdialog.h>

#include <QScopedPointer>

namespace OrbGui {

class OrbCamConfigTriggerDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigTriggerDialog : public OrbCamConfigDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigTriggerDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigTriggerDialog() override;

    void SetDevice(OrbCam::Device *device) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigTriggerDialog)
    Q_DISABLE_COPY(OrbCamConfigTriggerDialog)
    QScopedPointer<OrbCamConfigTriggerDialogPrivate> const d_ptr;
};

} // namespace OrbGui

/// Shows the dialog for the device under the window `parent` (0: none),
/// making a QApplication when the process has none, and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowTriggerDialog(OrbCam::Device *device, WId parent);

#endif
