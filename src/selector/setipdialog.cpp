#include "setipdialog.h"

#include "common/enterguard.h"
#include "ui_setipdialog.h"
#include "widgets/ip4validator.h"

#include <QShowEvent>

namespace OrbGui {

SetIpDialog::SetIpDialog(QWidget *parent)
    : QDialog(parent)
    , ui(new Ui_SetIpDialog)
{
    ui->setupUi(this);
    // An address is written to the camera only by a click on OK (or Enter
    // on it): never by an Enter typed in a field that is still being edited.
    commitOnlyOnEnter(this);
    // The card's set-up and the camera's MAC address are shown, not edited.
    for (QLineEdit *shown : { ui->nicMacLineEdit, ui->nicIpLineEdit, ui->nicSubnetMaskLineEdit,
                              ui->macAddressLineEdit }) {
        QPalette palette = shown->palette();
        palette.setBrush(QPalette::Base, palette.brush(QPalette::Disabled, QPalette::Base));
        shown->setPalette(palette);
    }
    for (QLineEdit *typed :
         { ui->ipAddressLineEdit, ui->subnetMaskLineEdit, ui->defaultGatewayLineEdit })
        typed->setValidator(new IP4Validator(typed));
    connect(ui->ipAddressLineEdit, &QLineEdit::textChanged, this, &SetIpDialog::checkSubnet);
    connect(ui->subnetMaskLineEdit, &QLineEdit::textChanged, this, &SetIpDialog::checkSubnet);
}

SetIpDialog::~SetIpDialog() = default;

void SetIpDialog::setIPAddress(unsigned address)
{
    ui->ipAddressLineEdit->setText(IP4Validator::getIpStr(address));
}
void SetIpDialog::setNetmask(unsigned mask)
{
    ui->subnetMaskLineEdit->setText(IP4Validator::getIpStr(mask));
}
void SetIpDialog::setGateway(unsigned gateway)
{
    ui->defaultGatewayLineEdit->setText(IP4Validator::getIpStr(gateway));
}
void SetIpDialog::setNicIPAddress(unsigned address)
{
    ui->nicIpLineEdit->setText(IP4Validator::getIpStr(address));
    checkSubnet();
}
void SetIpDialog::setNicNetmask(unsigned mask)
{
    ui->nicSubnetMaskLineEdit->setText(IP4Validator::getIpStr(mask));
    checkSubnet();
}
void SetIpDialog::setMACAddress(unsigned long long mac)
{
    setMACLineEdit(ui->macAddressLineEdit, mac);
}
void SetIpDialog::setNicMACAddress(unsigned long long mac)
{
    setMACLineEdit(ui->nicMacLineEdit, mac);
}

unsigned SetIpDialog::ipAddress() const
{
    return IP4Validator::getIp(ui->ipAddressLineEdit->text());
}
unsigned SetIpDialog::Netmask() const
{
    return IP4Validator::getIp(ui->subnetMaskLineEdit->text());
}
unsigned SetIpDialog::Gateway() const
{
    return IP4Validator::getIp(ui->defaultGatewayLineEdit->text());
}

void SetIpDialog::setMACLineEdit(QLineEdit *edit, unsigned long long mac)
{
    QStringList bytes;
    for (int shift = 40; shift >= 0; shift -= 8)
        bytes << QStringLiteral("%1").arg((mac >> shift) & 0xFF, 2, 16, QLatin1Char('0')).toUpper();
    edit->setText(bytes.join(QLatin1Char(':')));
}

void SetIpDialog::checkSubnet(const QString &)
{
    const unsigned camIp = IP4Validator::getIp(ui->ipAddressLineEdit->text());
    const unsigned camMask = IP4Validator::getIp(ui->subnetMaskLineEdit->text());
    const unsigned nicIp = IP4Validator::getIp(ui->nicIpLineEdit->text());
    const unsigned nicMask = IP4Validator::getIp(ui->nicSubnetMaskLineEdit->text());
    const bool sameSubnet = (camIp & camMask) == (nicIp & nicMask);
    ipOk = camIp != nicIp && camIp >= 16777216u && sameSubnet;
    maskOk = camMask == nicMask;
    const QString red = QStringLiteral("color: rgb(255, 0, 0);");
    if (ipOk && maskOk) {
        ui->ipStatusLabel->setText(tr("IP Configuration OK"));
        ui->ipStatusLabel->setStyleSheet(QStringLiteral("color: rgb(0, 192, 0);"));
    } else if (maskOk) {
        ui->ipStatusLabel->setText(sameSubnet ? tr("Incorrect IP address!")
                                              : tr("Subnet IP mismatch!"));
        ui->ipStatusLabel->setStyleSheet(red);
    } else {
        ui->ipStatusLabel->setText(tr("Subnet mask mismatch!"));
        ui->ipStatusLabel->setStyleSheet(red);
    }
}

void SetIpDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    // The lowest byte is selected, so that the user types it at once.
    QLineEdit *edit = ui->ipAddressLineEdit;
    edit->setFocus();
    const int dot = edit->text().lastIndexOf(QLatin1Char('.'));
    edit->setSelection(dot + 1, edit->text().size() - dot - 1);
}

} // namespace OrbGui
