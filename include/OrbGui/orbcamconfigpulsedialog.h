// OrbCamConfigPulseDialog: drives the camera's internal pulse generator
// (time base, period and width in microseconds, continuous or counted
// pulses, start and stop) and shows the delay between pulses and their
// frequency.
//
// The dialog never owns the device; it must outlive the dialog (or be
// replaced first with SetDevice(nullptr)). A null device, or a camera
// without one of the features, leaves the matching controls disabled.
// GUI thread only; the camera's change events are handed to it.
#ifndef ORBGUI_ORBCAMCONFIGPULSEDIALOG_H
#define ORBGUI_ORBCAMCONFIGPULSEDIALOG_H

#include <OrbGui/orbguiglobal.h>

#include <QDialog>
#include <QScopedPointer>

namespace OrbCam {
class Device;
}

namespace OrbGui {

class OrbCamConfigPulseDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigPulseDialog : public QDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigPulseDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigPulseDialog() override;

    // Binds every control again, to another device (or to none).
    void SetDevice(OrbCam::Device *device);

Q_SIGNALS:
    void closing();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigPulseDialog)
    Q_DISABLE_COPY(OrbCamConfigPulseDialog)
    QScopedPointer<OrbCamConfigPulseDialogPrivate> const d_ptr;
};

} // namespace OrbGui

// Shows the dialog for the device under the window `parent` (0: none),
// making a QApplication when the process has none, and destroys it again
// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowPulseDialog(OrbCam::Device *device, WId parent);

#endif
