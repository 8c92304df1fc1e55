/// \file
/// OrbCamConfigFrameABDialog: edits the camera's frame set-up: shutter mode, ADC
/// bit depth, frame mode, and for the frame that FrameAB_Selector names (two
/// tabs sharing one set of controls) exposure as lines and clocks and as a time
/// in microseconds, fixed frame period, line time, area of interest,
/// subsampling, analog and digital gain, black level and wide dynamic range.
/// See OrbCamConfigDialog for what the feature dialogs share.
#ifndef ORBGUI_ORBCAMCONFIGFRAMEABDIALOG_H
#define ORBGUI_ORBCAMCONFIGFRAMEABDIALOG_H

#include <OrbGui/orbcamconfigdialog.h>

#include <QScopedPointer>

namespace OrbGui {

class OrbCamConfigFrameABDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigFrameABDialog : public OrbCamConfigDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigFrameABDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigFrameABDialog() override;

    void SetDevice(OrbCam::Device *device) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigFrameABDialog)
    Q_DISABLE_COPY(OrbCamConfigFrameABDialog)
    QScopedPointer<OrbCamConfigFrameABDialogPrivate> const d_ptr;
};

} // namespace OrbGui

/// Shows the dialog for the device under the window `parent` (0: none),
/// making a QApplication when the process has none, and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowFrameABDialog(OrbCam::Device *device, WId parent);

#endif
