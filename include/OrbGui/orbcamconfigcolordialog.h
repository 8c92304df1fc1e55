/// \file
/// OrbCamConfigColorDialog: sets the camera's white balance: the automatic mode
/// and its tracking speed, and the three manual colour coefficients, each with a
/// button back to unity (256); a statistics box repeats the coefficients.
/// See OrbCamConfigDialog for what the feature dialogs share.
#ifndef ORBGUI_ORBCAMCONFIGCOLORDIALOG_H
#define ORBGUI_ORBCAMCONFIGCOLORDIALOG_H

#include <OrbGui/orbcamconfigdialog.h>

#include <QScopedPointer>

namespace OrbGui {

class OrbCamConfigColorDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigColorDialog : public OrbCamConfigDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigColorDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigColorDialog() override;

    void SetDevice(OrbCam::Device *device) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigColorDialog)
    Q_DISABLE_COPY(OrbCamConfigColorDialog)
    QScopedPointer<OrbCamConfigColorDialogPrivate> const d_ptr;
};

} // namespace OrbGui

/// Shows the dialog for the device under the window `parent` (0: none),
/// making a QApplication when the process has none, and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowColorDialog(OrbCam::Device *device, WId parent);

#endif
