#include <OrbGui/orbcamconfigdialog.h>

#include "common/enterguard.h"

#include <QCloseEvent>

namespace OrbGui {

class OrbCamConfigDialogPrivate {
public:
    // closing() went out since the dialog was last shown: a close hides the
    // dialog too, and is announced once.
    bool closingAnnounced = true;
};

OrbCamConfigDialog::OrbCamConfigDialog(QWidget *parent)
    : QDialog(parent)
    , dialog_d(new OrbCamConfigDialogPrivate)
{
    commitOnlyOnEnter(this);
}

OrbCamConfigDialog::~OrbCamConfigDialog() = default;

void OrbCamConfigDialog::announceClosing()
{
    if (dialog_d->closingAnnounced)
        return;
    dialog_d->closingAnnounced = true;
    Q_EMIT closing();
}

void OrbCamConfigDialog::closeEvent(QCloseEvent *event)
{
    announceClosing();
    QDialog::closeEvent(event);
}

// Escape (reject) and a host's hide() hide the dialog without a close
// event; the window's button must follow them all the same. A spontaneous
// hide is the window system minimising it: the dialog stays open.
bool OrbCamConfigDialog::event(QEvent *event)
{
    if (event->type() == QEvent::Show)
        dialog_d->closingAnnounced = false;
    else if (event->type() == QEvent::Hide && !event->spontaneous())
        announceClosing();
    return QDialog::event(event);
}

} // namespace OrbGui
