/// \file
/// OrbCamConfigOutputDialog: sets how the camera delivers its image data: pixel
/// format, look-up table, defect and hot pixel correction with their thresholds,
/// mirroring and the test pattern.
/// See OrbCamConfigDialog for what the feature dialogs share.
#ifndef ORBGUI_ORBCAMCONFIGOUTPUTDIALOG_H
#define ORBGUI_ORBCAMCONFIGOUTPUTDIALOG_H

#include <OrbGui/orbcamconfigdialog.h>

#include <QScopedPointer>

namespace OrbGui {

class OrbCamConfigOutputDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigOutputDialog : public OrbCamConfigDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigOutputDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigOutputDialog() override;

    void SetDevice(OrbCam::Device *device) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigOutputDialog)
    Q_DISABLE_COPY(OrbCamConfigOutputDialog)
    QScopedPointer<OrbCamConfigOutputDialogPrivate> const d_ptr;
};

} // namespace OrbGui

/// Shows the dialog for the device under the window `parent` (0: none),
/// making a QApplication when the process has none, and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowOutputDialog(OrbCam::Device *device, WId parent);

#endif
