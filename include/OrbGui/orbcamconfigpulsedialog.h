/// \file
/// OrbCamConfigPulseDialog: drives the camera's internal pulse generator
/// (time base, period and width in microseconds, continuous or counted
/// pulses, start and stop) and shows the delay between pulses and their
/// frequency.
/// See OrbCamConfigDialog for what the feature dialogs share.
#ifndef ORBGUI_ORBCAMCONFIGPULSEDIALOG_H
#define ORBGUI_ORBCAMCONFIGPULSEDIALOG_H

#include <OrbGui/orbcamconfigdialog.h>

#include <QScopedPointer>

namespace OrbGui {

class OrbCamConfigPulseDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigPulseDialog : public OrbCamConfigDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigPulseDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigPulseDialog() override;

    void SetDevice(OrbCam::Device *device) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigPulseDialog)
    Q_DISABLE_COPY(OrbCamConfigPulseDialog)
    QScopedPointer<OrbCamConfigPulseDialogPrivate> const d_ptr;
};

} // namespace OrbGui

/// Shows the dialog for the device under the window `parent` (0: none),
/// making a QApplication when the process has none, and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowPulseDialog(OrbCam::Device *device, WId parent);

#endif
