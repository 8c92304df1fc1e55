/// \file
/// OrbCamConfigDialog: what the six feature dialogs of the camera
/// configuration have in common. Each binds its controls to named features
/// of a camera (OrbCam::Device) through a feature mapper, follows the
/// camera's changes, rebinds everything to another camera with SetDevice,
/// keeps the size of its layout and announces its closing.
///
/// A dialog never owns its device; the device must outlive the dialog (or be
/// replaced first with SetDevice(nullptr)). A null device, or a camera
/// without one of the features, leaves the matching controls disabled.
/// GUI thread only; the camera's change events are handed to it.
#ifndef ORBGUI_ORBCAMCONFIGDIALOG_H
#define ORBGUI_ORBCAMCONFIGDIALOG_H

#include <OrbGui/orbguiglobal.h>

#include <QDialog>
#include <QScopedPointer>

namespace OrbCam {
class Device;
}

namespace OrbGui {

class OrbCamConfigDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigDialog : public QDialog {
    Q_OBJECT

public:
    ~OrbCamConfigDialog() override;

    /// Binds every control again, to another device (or to none).
    virtual void SetDevice(OrbCam::Device *device) = 0;

Q_SIGNALS:
    /// The dialog is being closed or hidden, whichever way: its close
    /// button, Escape, or a hide() by the host (the configuration window
    /// unchecks its button). Once for each time the dialog was shown.
    void closing();

protected:
    /// Enter in a dialog commits the field it is pressed in; it presses a
    /// push button only when that button has the focus.
    explicit OrbCamConfigDialog(QWidget *parent);
    void closeEvent(QCloseEvent *event) override;
    bool event(QEvent *event) override;

private:
    Q_DISABLE_COPY(OrbCamConfigDialog)
    void announceClosing();
    // Named apart from the d_ptr of each dialog derived from this class.
    QScopedPointer<OrbCamConfigDialogPrivate> const dialog_d;
};

} // namespace OrbGui

#endif
