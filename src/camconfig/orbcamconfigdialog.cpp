#include <OrbGui/orbcamconfigdialog.h>

#include <QCloseEvent>

namespace OrbGui {

OrbCamConfigDialog::OrbCamConfigDialog(QWidget *parent)
    : QDialog(parent)
{
}

OrbCamConfigDialog::~OrbCamConfigDialog() = default;

void OrbCamConfigDialog::closeEvent(QCloseEvent *event)
{
    Q_EMIT closing();
    QDialog::closeEvent(event);
}

} // namespace OrbGui
