#include "setipdialog.h"

#include "common/enterguard.h"
#include "ui_setipdialog.h"
#include "widgets/ip4validator.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

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
    // No validator on what the user types: one drops the keystroke it
    // does not like (999 became 99) or completes a half address, and the
    // address written would not be the one typed. Whatever is typed stays
    // as it is; the verdict says what is wrong with it and OK waits.
    for (QLineEdit *typed :
         { ui->ipAddressLineEdit, ui->subnetMaskLineEdit, ui->defaultGatewayLineEdit }) {
        typed->setMaxLength(31);
        connect(typed, &QLineEdit::textChanged, this, &SetIpDialog::checkSubnet);
    }
    reason = new QLabel(this);
    reason->setObjectName(QStringLiteral("ipReasonLabel"));
    reason->setWordWrap(true);
    reason->setStyleSheet(QStringLiteral("color: rgb(255, 0, 0);"));
    ui->verticalLayout->insertWidget(ui->verticalLayout->count() - 1, reason);
    reason->hide();
    checkSubnet();
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

void SetIpDialog::setTakenAddresses(const QHash<unsigned, QString> &taken)
{
    takenAddresses = taken;
    checkSubnet();
}

bool SetIpDialog::parseAddress(const QString &text, unsigned *address)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 4)
        return false;
    unsigned value = 0;
    for (const QString &part : parts) {
        if (part.isEmpty() || part.size() > 3)
            return false;
        for (const QChar c : part)
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return false;
        const unsigned byte = part.toUInt();
        if (byte > 255)
            return false;
        value = (value << 8) | byte;
    }
    *address = value;
    return true;
}

namespace {

bool contiguous(unsigned mask)
{
    // Ones from the top, then zeros only.
    return mask != 0 && ((~mask + 1u) & ~mask) == 0;
}

// Why the address cannot be a camera's on the subnet (mask), if it cannot.
QString unusable(unsigned address, unsigned mask)
{
    const unsigned first = address >> 24;
    if (address == 0xFFFFFFFFu)
        return SetIpDialog::tr("255.255.255.255 is the broadcast address of every network.");
    if (first == 0)
        return SetIpDialog::tr("Addresses starting with 0 mean \"this network\", not a host.");
    if (first == 127)
        return SetIpDialog::tr("Addresses starting with 127 are the loopback of each computer.");
    if (first >= 224 && first <= 239)
        return SetIpDialog::tr("%1 is a multicast address.").arg(IP4Validator::getIpStr(address));
    if (first >= 240)
        return SetIpDialog::tr("%1 is in the reserved range 240.0.0.0 and above.")
            .arg(IP4Validator::getIpStr(address));
    // A subnet of one or two addresses has no network or broadcast address.
    if (contiguous(mask) && ~mask > 1u) {
        if ((address & ~mask) == 0)
            return SetIpDialog::tr("%1 is the subnet's network address.")
                .arg(IP4Validator::getIpStr(address));
        if ((address & ~mask) == ~mask)
            return SetIpDialog::tr("%1 is the subnet's broadcast address.")
                .arg(IP4Validator::getIpStr(address));
    }
    return QString();
}

} // namespace

// The verdict keeps the flags and texts of old where they apply (OK, a wrong
// address, a subnet or mask mismatch, which the caller asks the user to
// confirm), and refuses, with its reason, what would break the network: an
// address that is no address, one another device already has, the card's
// own, network, broadcast, loopback, multicast and reserved addresses, a
// mask that is not one, a gateway outside the subnet. OK waits until it is
// put right.
void SetIpDialog::checkSubnet(const QString &)
{
    const QString red = QStringLiteral("color: rgb(255, 0, 0);");
    ipOk = maskOk = false;
    QString refusal;
    unsigned camIp = 0, camMask = 0, gateway = 0;
    const unsigned nicIp = IP4Validator::getIp(ui->nicIpLineEdit->text());
    const unsigned nicMask = IP4Validator::getIp(ui->nicSubnetMaskLineEdit->text());
    const QString ipText = ui->ipAddressLineEdit->text().trimmed();
    const QString maskText = ui->subnetMaskLineEdit->text().trimmed();
    const QString gatewayText = ui->defaultGatewayLineEdit->text().trimmed();
    const bool ipParsed = parseAddress(ipText, &camIp);
    const bool maskParsed = parseAddress(maskText, &camMask);
    if (ipText.isEmpty()) {
        refusal = tr("Enter the camera's IP address.");
    } else if (!ipParsed) {
        refusal = tr("\"%1\" is not an IP address: four numbers from 0 to 255 joined by dots.")
                      .arg(ipText);
    } else if (maskText.isEmpty()) {
        refusal = tr("Enter the camera's subnet mask.");
    } else if (!maskParsed || !contiguous(camMask)) {
        refusal = tr("\"%1\" is not a subnet mask: ones from the left, then zeros "
                     "(such as 255.255.255.0).")
                      .arg(maskText);
    }
    if (!ipParsed || !maskParsed) {
        ui->ipStatusLabel->setText(refusal);
        ui->ipStatusLabel->setStyleSheet(red);
        showRefusal(QString(), true);
        return;
    }
    const bool sameSubnet = (camIp & camMask) == (nicIp & nicMask);
    maskOk = camMask == nicMask;
    if (refusal.isEmpty()) {
        refusal = unusable(camIp, camMask);
        if (refusal.isEmpty() && camIp == nicIp)
            refusal = tr("%1 is the network card's own address.").arg(ipText);
        if (refusal.isEmpty() && takenAddresses.contains(camIp))
            refusal = tr("%1 is already used by %2.").arg(ipText, takenAddresses.value(camIp));
    }
    ipOk = refusal.isEmpty() && camIp != nicIp && camIp >= 16777216u && sameSubnet;
    if (refusal.isEmpty() && !gatewayText.isEmpty()) {
        if (!parseAddress(gatewayText, &gateway))
            refusal = tr("\"%1\" is not a gateway address.").arg(gatewayText);
        else if (gateway != 0 && gateway == camIp)
            refusal = tr("The gateway cannot be the camera's own address.");
        else if (gateway != 0 && (gateway & camMask) != (camIp & camMask))
            refusal = tr("The gateway %1 is outside the camera's subnet.").arg(gatewayText);
    }
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
    showRefusal(refusal, !refusal.isEmpty());
}

void SetIpDialog::showRefusal(const QString &why, bool refused)
{
    reason->setText(why);
    reason->setVisible(!why.isEmpty());
    refusedNow = refused;
    if (QPushButton *ok = ui->buttonBox->button(QDialogButtonBox::Ok))
        ok->setEnabled(!refused);
}

void SetIpDialog::accept()
{
    // Enter on a disabled OK, or a call from code, must not pass it.
    if (refusedNow)
        return;
    QDialog::accept();
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
