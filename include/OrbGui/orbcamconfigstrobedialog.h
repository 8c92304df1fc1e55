/// \file
/// OrbCamConfigStrobeDialog: sets the camera's two strobe pulses (mode,
/// timing reference, delay and width in microseconds) and the polarity and
/// source of its two outputs, with a timing picture that follows the chosen
/// references.
/// See OrbCamConfigDialog for what the feature dialogs share.
#ifndef ORBGUI_ORBCAMCONFIGSTROBEDIALOG_H
#define ORBGUI_ORBCAMCONFIGSTROBEDIALOG_H

#include <OrbGui/orbcamconfigdialog.h>

#include <QScopedPointer>

namespace OrbGui {

class OrbCamConfigStrobeDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigStrobeDialog : public OrbCamConfigDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigStrobeDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigStrobeDialog() override;

    void SetDevice(OrbCam::Device *device) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigStrobeDialog)
    Q_DISABLE_COPY(OrbCamConfigStrobeDialog)
    QScopedPointer<OrbCamConfigStrobeDialogPrivate> const d_ptr;
};

} // namespace OrbGui

/// Shows the dialog for the device under the window `parent` (0: none),
/// making a QApplication when the process has none, and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowStrobeDialog(OrbCam::Device *device, WId parent);

#endif
