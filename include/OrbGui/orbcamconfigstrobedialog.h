// OrbCamConfigStrobeDialog: sets the camera's two strobe pulses (mode,
// timing reference, delay and width in microseconds) and the polarity and
// source of its two outputs, with a timing picture that follows the chosen
// references.
//
// The dialog never owns the device; it must outlive the dialog (or be
// replaced first with SetDevice(nullptr)). A null device, or a camera
// without one of the features, leaves the matching controls disabled.
// GUI thread only; the camera's change events are handed to it.
#ifndef ORBGUI_ORBCAMCONFIGSTROBEDIALOG_H
#define ORBGUI_ORBCAMCONFIGSTROBEDIALOG_H

#include <OrbGui/orbguiglobal.h>

#include <QDialog>
#include <QScopedPointer>

namespace OrbCam {
class Device;
}

namespace OrbGui {

class OrbCamConfigStrobeDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigStrobeDialog : public QDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigStrobeDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigStrobeDialog() override;

    // Binds every control again, to another device (or to none).
    void SetDevice(OrbCam::Device *device);

Q_SIGNALS:
    void closing();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigStrobeDialog)
    Q_DISABLE_COPY(OrbCamConfigStrobeDialog)
    QScopedPointer<OrbCamConfigStrobeDialogPrivate> const d_ptr;
};

} // namespace OrbGui

// Shows the dialog for the device under the window `parent` (0: none),
// making a QApplication when the process has none, and destroys it again
// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowStrobeDialog(OrbCam::Device *device, WId parent);

#endif
