// The dialog in which the user gives a GigE Vision camera a new address,
// mask and gateway, beside the configuration of the network card that
// reaches it. It checks the address against the card's subnet as the user
// types and shows the verdict; the caller reads ipOk, maskOk and the values
// after exec(). A mismatch of subnet or mask only shows (the caller asks the
// user to confirm it); what would break the network (no address, another
// device's, the card's own, network, broadcast, loopback, multicast or
// reserved addresses, a mask that is none, a gateway outside the subnet) is
// refused with its reason and OK stays disabled. Typed text is never
// changed. GUI thread only.
#ifndef ORBGUI_SETIPDIALOG_H
#define ORBGUI_SETIPDIALOG_H

#include <QDialog>
#include <QHash>

#include <memory>

class QLabel;
class QLineEdit;
class Ui_SetIpDialog;

namespace OrbGui {

class SetIpDialog : public QDialog {
    Q_OBJECT

public:
    explicit SetIpDialog(QWidget *parent = nullptr);
    ~SetIpDialog() override;

    // Addresses and masks: 32 bits, most significant byte first. MAC
    // addresses: the low 48 bits.
    void setIPAddress(unsigned address);
    void setNetmask(unsigned mask);
    void setGateway(unsigned gateway);
    void setNicIPAddress(unsigned address);
    void setNicNetmask(unsigned mask);
    void setMACAddress(unsigned long long mac);
    void setNicMACAddress(unsigned long long mac);
    unsigned ipAddress() const;
    unsigned Netmask() const;
    unsigned Gateway() const;
    // Addresses other devices on the card's network have, with the name to
    // say whose they are.
    void setTakenAddresses(const QHash<unsigned, QString> &taken);
    // Four decimal numbers 0 to 255 joined by dots, nothing else.
    static bool parseAddress(const QString &text, unsigned *address);

    // The camera address fits the card's subnet (and is neither the card's
    // address nor below 1.0.0.0); the camera mask equals the card's.
    bool ipOk = false;
    bool maskOk = false;

public Q_SLOTS:
    // Recomputes the verdict; the text is not used.
    void checkSubnet(const QString &text = QString());
    void accept() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    static void setMACLineEdit(QLineEdit *edit, unsigned long long mac);
    void showRefusal(const QString &why, bool refused);

    std::unique_ptr<Ui_SetIpDialog> ui;
    QLabel *reason = nullptr;
    QHash<unsigned, QString> takenAddresses;
    bool refusedNow = true;
};

} // namespace OrbGui

#endif
