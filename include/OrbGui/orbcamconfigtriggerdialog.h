// OrbCamConfigTriggerDialog: switches the camera's trigger on or off,
// chooses its source, edge and debounce time, and fires a software trigger
// (offered only while the trigger is on and its source is "Software").
//
// The dialog never owns the device; it must outlive the dialog (or be
// replaced first with SetDevice(nullptr)). A null device, or a camera
// without one of the features, leaves the matching controls disabled.
// GUI thread only; the camera's change events are handed to it.
#ifndef ORBGUI_ORBCAMCONFIGTRIGGERDIALOG_H
#define ORBGUI_ORBCAMCONFIGTRIGGERDIALOG_H

#include <OrbGui/orbguiglobal.h>

#include <QDialog>
#include <QScopedPointer>

namespace OrbCam {
class Device;
}

namespace OrbGui {

class OrbCamConfigTriggerDialogPrivate;

class ORBGUI_EXPORT OrbCamConfigTriggerDialog : public QDialog {
    Q_OBJECT
    Q_CLASSINFO("version", "1.0.0")

public:
    explicit OrbCamConfigTriggerDialog(OrbCam::Device *device, QWidget *parent = nullptr);
    ~OrbCamConfigTriggerDialog() override;

    // Binds every control again, to another device (or to none).
    void SetDevice(OrbCam::Device *device);

Q_SIGNALS:
    void closing();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    Q_DECLARE_PRIVATE(OrbCamConfigTriggerDialog)
    Q_DISABLE_COPY(OrbCamConfigTriggerDialog)
    QScopedPointer<OrbCamConfigTriggerDialogPrivate> const d_ptr;
};

} // namespace OrbGui

// Shows the dialog for the device under the window `parent` (0: none),
// making a QApplication when the process has none, and destroys it again
// before returning: it runs no event loop of its own.
extern "C" ORBGUI_EXPORT void ShowTriggerDialog(OrbCam::Device *device, WId parent);

#endif
