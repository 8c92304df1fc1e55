/// \file
/// OrbCamConfig: the camera configuration window. It shows a camera's status
/// (image size, frame rate, frame time and exposure time for frame A and
/// frame B, the sensor temperature), opens the six feature dialogs, connects
/// to a camera through the camera selector and disconnects, shows the
/// camera's identity in an About box, and follows the camera's loss and
/// return.
///
/// Ownership: a device handed in (constructor, SetDevice) stays the host's
/// and is never released by the window; one the window opened through the
/// selector (and the system it took) is released on disconnect and when the
/// window goes. A device handed in must outlive the window.
/// Threads: GUI thread only. The camera API's event callbacks only record
/// the loss or return; the window acts on it in its next one-second tick.
#ifndef ORBGUI_ORBCAMCONFIG_H
#define ORBGUI_ORBCAMCONFIG_H

#include <OrbGui/orbguiglobal.h>

#include <QMainWindow>
#include <QScopedPointer>

namespace OrbCam {
class Device;
}

namespace OrbGui {

class OrbCamConfigPrivate;

class ORBGUI_EXPORT OrbCamConfig : public QMainWindow {
    Q_OBJECT
    Q_CLASSINFO("version", "1.4.0")

public:
    /// A null device lets the user choose one in the camera selector.
    explicit OrbCamConfig(OrbCam::Device *device, QWidget *parent = nullptr,
                          Qt::WindowFlags flags = Qt::WindowFlags());
    ~OrbCamConfig() override;

    /// Shows another device (the host's) in the window and every dialog.
    void SetDevice(OrbCam::Device *device);

protected:
    void showEvent(QShowEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfig)
    Q_DISABLE_COPY(OrbCamConfig)
    QScopedPointer<OrbCamConfigPrivate> const d_ptr;
};

} // namespace OrbGui

/// Makes a QApplication when the process has none, builds the window for the
/// device under the window `parent` (0: none), shows it and destroys it again
/// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowCamConfigDialog(OrbCam::Device *device, WId parent);

#endif
