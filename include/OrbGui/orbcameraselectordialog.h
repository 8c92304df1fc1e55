/// \file
/// OrbCameraSelectorDialog: the modal dialog in which the user picks one
/// camera out of every camera the camera access API can see. A tree of
/// interfaces and their cameras on the left, what is known of the current
/// interface and camera on the right; a rescan button, optional background
/// polling that keeps the tree current (about once a second), and "Set IP
/// Address" for GigE Vision cameras. OK is offered only for a camera that can
/// be opened (not for one without access or outside the network card's
/// subnet).
///
/// The dialog never owns the system; it must outlive the dialog. GUI thread
/// only; the polling thread is the dialog's own and is stopped and joined
/// when polling is turned off or the dialog is destroyed.
#ifndef ORBGUI_ORBCAMERASELECTORDIALOG_H
#define ORBGUI_ORBCAMERASELECTORDIALOG_H

#include <OrbGui/orbguiglobal.h>

#include <QDialog>
#include <QScopedPointer>

namespace OrbCam {
class System;
class DeviceInfo;
} // namespace OrbCam

namespace OrbGui {

class OrbCameraSelectorDialogPrivate;

class ORBGUI_EXPORT OrbCameraSelectorDialog : public QDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    /// poll: the initial state of "Polling"; when true, polling starts at once.
    explicit OrbCameraSelectorDialog(OrbCam::System *system, QWidget *parent = nullptr,
                                     bool poll = false);
    ~OrbCameraSelectorDialog() override;

    /// Whether polling is on.
    bool isPollChecked();
    /// The camera of the current item, or null when the current item is not
    /// a camera. Owned by the camera access API.
    OrbCam::DeviceInfo *selectedCamera() const;
    /// Does nothing, deliberately: the choice is always the user's.
    void setSelectedCamera(OrbCam::DeviceInfo *camera);

private:
    Q_DECLARE_PRIVATE(OrbCameraSelectorDialog)
    Q_DISABLE_COPY(OrbCameraSelectorDialog)
    QScopedPointer<OrbCameraSelectorDialogPrivate> const d_ptr;
};

/// Runs the selector modally and returns the chosen camera, or null on
/// cancel. Creates a QApplication when the process has none. A non-zero
/// parentWindowId (an X11 window id) keeps the dialog above that window of
/// the host's and centred on it; the host's window is left where it is.
ORBGUI_EXPORT OrbCam::DeviceInfo *SelectCamera(OrbCam::System *system, const QString &title,
                                               unsigned long parentWindowId, bool poll);

} // namespace OrbGui

#endif
