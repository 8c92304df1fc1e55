#include <OrbGui/orbcameraselectorapi.h>
#include <OrbGui/orbcameraselectordialog.h>

#include "camerasearch.h"
#include "common/flatentry.h"
#include "common/guihandoff.h"
#include "devicetreemodel.h"
#include "setipdialog.h"
#include "ui_orbcameraselectordialog.h"
#include "widgets/ip4validator.h"

#include <OrbCam/OrbCam.h>
#include <OrbCam/OrbGenParam.h>

#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardItemModel>

#include <cstring>

namespace OrbGui {

class OrbCameraSelectorDialogPrivate {
    Q_DECLARE_PUBLIC(OrbCameraSelectorDialog)

public:
    OrbCameraSelectorDialogPrivate(OrbCameraSelectorDialog *q, OrbCam::System *cameraSystem)
        : q_ptr(q)
        , system(cameraSystem)
        , handOff(q)
    {
    }

    void init(bool poll);
    void currentChanged(const QModelIndex &current);
    void setButtons(const QModelIndex &current);
    void fillPanes(const QModelIndex &current);
    void showPane(QTreeView *view, QStandardItemModel *model);
    void setPolling(bool on);
    void showFound();
    void searching(bool running, bool shown);
    void rebuilt(const QModelIndex &at);
    bool forceIp();
    void runForceIp();

    OrbCameraSelectorDialog *const q_ptr;
    Ui_OrbCameraSelectorDialog ui;
    OrbCam::System *system;
    DeviceTreeModel *model = nullptr;
    QPushButton *rescan = nullptr;
    QAction *setIpAction = nullptr;
    QMenu *menu = nullptr;
    QLabel *searchingLabel = nullptr;
    bool polling = false;
    // The process's camera search; 0 when there is none (no system). It
    // stops calling before the hand-off goes.
    int searchTicket = 0;
    QString currentId;
    QStandardItemModel *interfaceInfo = nullptr;
    QStandardItemModel *deviceInfo = nullptr;
    GuiHandOff handOff;
};

namespace {

QString interfaceTypeText(uint32_t type)
{
    switch (type) {
    case OrbCam::InterfaceUSB3Vision:
        return OrbCameraSelectorDialog::tr("USB3 Vision");
    case OrbCam::InterfaceGigEVision:
        return OrbCameraSelectorDialog::tr("GigE Vision");
    case OrbCam::InterfaceCameraLink:
        return OrbCameraSelectorDialog::tr("CameraLink");
    case OrbCam::InterfaceCoaXPress:
        return OrbCameraSelectorDialog::tr("CoaXPress");
    case OrbCam::InterfaceHDSDI:
        return OrbCameraSelectorDialog::tr("HD-SDI");
    default:
        return OrbCameraSelectorDialog::tr("Custom");
    }
}

QString accessStatusText(uint32_t status)
{
    switch (status) {
    case OrbCam::AccessReadWrite:
        return OrbCameraSelectorDialog::tr("ReadWrite");
    case OrbCam::AccessReadOnly:
        return OrbCameraSelectorDialog::tr("ReadOnly");
    case OrbCam::AccessNone:
        return OrbCameraSelectorDialog::tr("NO ACCESS");
    case OrbCam::AccessIPSubnetMismatch:
        return OrbCameraSelectorDialog::tr("IP Subnet Mismatch");
    default:
        return OrbCameraSelectorDialog::tr("Unknown");
    }
}

QString macText(uint64_t mac)
{
    QStringList bytes;
    for (int shift = 40; shift >= 0; shift -= 8)
        bytes << QStringLiteral("%1").arg((mac >> shift) & 0xFF, 2, 16, QLatin1Char('0')).toUpper();
    return bytes.join(QLatin1Char(':'));
}

QString utf8(const char *text)
{
    return text ? QString::fromUtf8(text) : QString();
}

// An integer feature of an interface, or false when it cannot be read.
bool readInt(OrbGenParam::Array *params, const char *name, int64_t *value)
{
    OrbGenParam::Int *feature = params ? params->GetInt(name) : nullptr;
    if (!feature)
        return false;
    OrbCamErr err = OrbCamOk;
    *value = feature->GetValue(&err);
    return err == OrbCamOk;
}

// Selects the camera among its interface's features for the reads that
// follow, and holds discovery off until destroyed, so that the camera is not
// renumbered between the choice and the reads.
class SelectedCamera {
public:
    explicit SelectedCamera(OrbCam::DeviceInfo *info)
        : m_interface(info->GetInterface())
    {
        m_interface->Lock();
        m_params = m_interface->GetParams();
        OrbGenParam::Int *selector = m_params ? m_params->GetInt("DeviceSelector") : nullptr;
        m_selected = selector && selector->SetValue(info->GetIndex()) == OrbCamOk;
    }
    ~SelectedCamera() { m_interface->Unlock(); }
    SelectedCamera(const SelectedCamera &) = delete;
    SelectedCamera &operator=(const SelectedCamera &) = delete;

    bool read(const char *name, int64_t *value) const
    {
        return m_selected && readInt(m_params, name, value);
    }
    OrbGenParam::Array *params() const { return m_params; }

private:
    OrbCam::Interface *m_interface;
    OrbGenParam::Array *m_params = nullptr;
    bool m_selected = false;
};

} // namespace

void OrbCameraSelectorDialogPrivate::init(bool poll)
{
    Q_Q(OrbCameraSelectorDialog);
    ui.setupUi(q);
    // Discovery waits for the network: it runs on the search thread, and the
    // tree starts with what the system found last and fills in as each
    // interface answers.
    searchTicket = CameraSearch::instance().subscribe(
        system,
        { [this](bool running, bool shown) {
             handOff.post([this, running, shown] { searching(running, shown); });
         },
          [this] { handOff.post([this] { showFound(); }); } });
    model = new DeviceTreeModel(system, q, searchTicket == 0);
    ui.cameraTreeView->setModel(model);
    ui.cameraTreeView->expandAll();
    ui.splitter->setStretchFactor(0, 1);
    ui.splitter->setStretchFactor(1, 1);

    rescan = ui.buttonBox->addButton(OrbCameraSelectorDialog::tr("&Rescan"),
                                     QDialogButtonBox::ActionRole);
    rescan->setObjectName(QStringLiteral("rescanBtn"));
    const QStyleOptionButton option;
    rescan->setMinimumWidth(
        rescan->fontMetrics().horizontalAdvance(rescan->text())
        + 2 * q->style()->pixelMetric(QStyle::PM_ButtonMargin, &option, rescan));
    rescan->setEnabled(false);

    searchingLabel = new QLabel(OrbCameraSelectorDialog::tr("Searching for cameras\u2026"), q);
    searchingLabel->setObjectName(QStringLiteral("searchingLabel"));
    QSizePolicy keepRoom = searchingLabel->sizePolicy();
    keepRoom.setRetainSizeWhenHidden(true); // the buttons stay where they are
    searchingLabel->setSizePolicy(keepRoom);
    searchingLabel->hide();
    ui.horizontalLayout->insertWidget(ui.horizontalLayout->indexOf(ui.chPoll) + 1, searchingLabel);

    setIpAction = new QAction(OrbCameraSelectorDialog::tr("Set IP Address"), q);
    setIpAction->setObjectName(QStringLiteral("setIpAction"));
    menu = new QMenu(ui.cameraTreeView);
    menu->setObjectName(QStringLiteral("cameraMenu"));
    menu->addAction(setIpAction);
    ui.cameraTreeView->setContextMenuPolicy(Qt::CustomContextMenu);

    QObject::connect(ui.cameraTreeView->selectionModel(), &QItemSelectionModel::currentChanged, q,
                     [this](const QModelIndex &current) { currentChanged(current); });
    QObject::connect(ui.cameraTreeView, &QTreeView::activated, q, [this] {
        if (QPushButton *ok = ui.buttonBox->button(QDialogButtonBox::Ok))
            ok->click();
    });
    QObject::connect(rescan, &QPushButton::clicked, q, [this] {
        if (searchTicket != 0) {
            CameraSearch::instance().rescan();
            return;
        }
        model->rescan();
        rebuilt(model->getItemIdx(currentId));
    });
    QObject::connect(ui.chPoll, &QCheckBox::toggled, q, [this](bool on) { setPolling(on); });
    QObject::connect(ui.setIpBtn, &QPushButton::clicked, q, [this] { runForceIp(); });
    QObject::connect(setIpAction, &QAction::triggered, q, [this] { runForceIp(); });
    QObject::connect(ui.cameraTreeView, &QWidget::customContextMenuRequested, q,
                     [this](const QPoint &at) {
                         if (setIpAction->isEnabled())
                             menu->popup(ui.cameraTreeView->viewport()->mapToGlobal(at));
                     });

    setButtons(QModelIndex());
    ui.chPoll->setChecked(poll); // starts polling when asked
    rescan->setEnabled(!polling);
    const QModelIndex first = model->getFirstIdx();
    if (first.isValid())
        ui.cameraTreeView->setCurrentIndex(first);
}

void OrbCameraSelectorDialogPrivate::currentChanged(const QModelIndex &current)
{
    currentId = model->getItemID(current);
    fillPanes(current);
    setButtons(current);
}

void OrbCameraSelectorDialogPrivate::setButtons(const QModelIndex &current)
{
    auto *info = current.data(Qt::UserRole).value<OrbCam::DeviceInfo *>();
    bool ok = false;
    bool gige = false;
    if (info) {
        const uint32_t status = info->GetAccessStatus();
        ok = status != OrbCam::AccessNone && status != OrbCam::AccessIPSubnetMismatch;
        gige = info->GetInterface()->GetType() == OrbCam::InterfaceGigEVision;
    }
    if (QPushButton *button = ui.buttonBox->button(QDialogButtonBox::Ok))
        button->setEnabled(ok);
    ui.setIpBtn->setEnabled(gige);
    setIpAction->setEnabled(gige);
}

void OrbCameraSelectorDialogPrivate::showPane(QTreeView *view, QStandardItemModel *fresh)
{
    QAbstractItemModel *old = view->model();
    // The label column keeps the width the user gave it.
    const int labelWidth = old ? view->columnWidth(0) : 0;
    view->setModel(fresh);
    if (old)
        old->deleteLater();
    if (labelWidth > 0)
        view->setColumnWidth(0, labelWidth);
    else
        view->setColumnWidth(0, (view->columnWidth(0) + view->columnWidth(1)) / 2);
}

void OrbCameraSelectorDialogPrivate::fillPanes(const QModelIndex &current)
{
    Q_Q(OrbCameraSelectorDialog);
    auto *interfaces = new QStandardItemModel(0, 2, q);
    auto *devices = new QStandardItemModel(0, 2, q);
    auto row = [](QStandardItemModel *pane, const QString &label, const QString &value) {
        pane->appendRow({ new QStandardItem(label), new QStandardItem(value) });
    };
    const QVariant data = current.data(Qt::UserRole);
    auto *info = data.value<OrbCam::DeviceInfo *>();
    OrbCam::Interface *iface = info ? info->GetInterface() : data.value<OrbCam::Interface *>();
    if (iface) {
        row(interfaces, OrbCameraSelectorDialog::tr("Description"), utf8(iface->GetDescription()));
        row(interfaces, OrbCameraSelectorDialog::tr("Type"), interfaceTypeText(iface->GetType()));
        if (iface->GetType() == OrbCam::InterfaceGigEVision) {
            OrbGenParam::Array *params = iface->GetParams();
            int64_t value = 0;
            row(interfaces, OrbCameraSelectorDialog::tr("MAC Address"),
                readInt(params, "GevInterfaceMACAddress", &value) ? macText(value) : QString());
            row(interfaces, OrbCameraSelectorDialog::tr("IP Address"),
                readInt(params, "GevInterfaceSubnetIPAddress", &value)
                    ? IP4Validator::getIpStr(static_cast<unsigned>(value))
                    : QString());
            row(interfaces, OrbCameraSelectorDialog::tr("Netmask"),
                readInt(params, "GevInterfaceSubnetMask", &value)
                    ? IP4Validator::getIpStr(static_cast<unsigned>(value))
                    : QString());
        }
    }
    if (info) {
        row(devices, OrbCameraSelectorDialog::tr("Display name"), utf8(info->GetDisplayName()));
        row(devices, OrbCameraSelectorDialog::tr("Vendor"), utf8(info->GetVendor()));
        row(devices, OrbCameraSelectorDialog::tr("Model"), utf8(info->GetModel()));
        row(devices, OrbCameraSelectorDialog::tr("Serial number"), utf8(info->GetSerialNumber()));
        row(devices, OrbCameraSelectorDialog::tr("Version"), utf8(info->GetVersion()));
        row(devices, OrbCameraSelectorDialog::tr("User name"), utf8(info->GetUserName()));
        row(devices, OrbCameraSelectorDialog::tr("Access status"),
            accessStatusText(info->GetAccessStatus()));
        const uint32_t type = iface->GetType();
        if (type == OrbCam::InterfaceUSB3Vision || type == OrbCam::InterfaceGigEVision) {
            const SelectedCamera selected(info);
            int64_t value = 0;
            auto address = [&](const char *name) {
                return selected.read(name, &value)
                    ? IP4Validator::getIpStr(static_cast<unsigned>(value))
                    : QString();
            };
            if (type == OrbCam::InterfaceUSB3Vision) {
                row(devices, OrbCameraSelectorDialog::tr("USB Version"),
                    selected.read("DeviceUSBVersionDetected", &value)
                        ? QStringLiteral("0x%1").arg(value, 4, 16, QLatin1Char('0'))
                        : QString());
            } else {
                row(devices, OrbCameraSelectorDialog::tr("MAC Address"),
                    selected.read("GevDeviceMACAddress", &value) ? macText(value) : QString());
                row(devices, OrbCameraSelectorDialog::tr("IP Address"),
                    address("GevDeviceIPAddress"));
                row(devices, OrbCameraSelectorDialog::tr("Netmask"),
                    address("GevDeviceSubnetMask"));
                row(devices, OrbCameraSelectorDialog::tr("Gateway"), address("GevDeviceGateway"));
            }
        }
    }
    interfaces->setObjectName(QStringLiteral("interfaceInfo"));
    devices->setObjectName(QStringLiteral("deviceInfo"));
    showPane(ui.interfaceInfoTreeView, interfaces);
    showPane(ui.deviceInfoTreeView, devices);
    interfaceInfo = interfaces;
    deviceInfo = devices;
}

void OrbCameraSelectorDialogPrivate::rebuilt(const QModelIndex &at)
{
    // The tree was rebuilt: back to the same camera when it is still there,
    // else to the first interface.
    ui.cameraTreeView->expandAll();
    const QModelIndex target = at.isValid() ? at : model->getFirstIdx();
    if (target.isValid()) {
        ui.cameraTreeView->selectionModel()->select(target, QItemSelectionModel::ClearAndSelect);
        ui.cameraTreeView->setCurrentIndex(target);
    }
    currentChanged(ui.cameraTreeView->currentIndex());
}

// Returns at once either way: a pass under way ends on the search thread.
void OrbCameraSelectorDialogPrivate::setPolling(bool on)
{
    polling = on;
    rescan->setEnabled(!on);
    if (searchTicket != 0)
        CameraSearch::instance().setPolling(searchTicket, on);
}

void OrbCameraSelectorDialogPrivate::showFound()
{
    if (model->refresh())
        rebuilt(model->getItemIdx(currentId));
}

void OrbCameraSelectorDialogPrivate::searching(bool running, bool shown)
{
    if (shown)
        searchingLabel->setVisible(running);
    if (!running)
        showFound();
}

void OrbCameraSelectorDialogPrivate::runForceIp()
{
    Q_Q(OrbCameraSelectorDialog);
    if (!forceIp())
        QMessageBox::critical(q, OrbCameraSelectorDialog::tr("Set IP Address"),
                              OrbCameraSelectorDialog::tr("Can't set IP address"));
}

namespace {

// What other cameras on the camera's card use, so that the dialog can refuse
// an address that is taken.
QHash<unsigned, QString> takenAddresses(OrbCam::DeviceInfo *camera)
{
    QHash<unsigned, QString> taken;
    OrbCam::DeviceInfoList *list = camera->GetInterface()->GetDeviceInfoList();
    if (!list)
        return taken;
    for (OrbCam::DeviceInfo *other = list->First(); other; other = list->Next()) {
        if (other == camera || std::strcmp(other->GetID(), camera->GetID()) == 0)
            continue;
        int64_t address = 0;
        if (SelectedCamera(other).read("GevDeviceIPAddress", &address) && address != 0)
            taken.insert(
                static_cast<unsigned>(address),
                QStringLiteral("%1 (%2)").arg(utf8(other->GetDisplayName()), utf8(other->GetID())));
    }
    list->Release();
    return taken;
}

} // namespace

// The dialog runs its own event loop, in which polling may rebuild the
// camera tree: nothing of the tree's rows is held across it, only the
// camera's identifier, by which it is found again afterwards.
bool OrbCameraSelectorDialogPrivate::forceIp()
{
    Q_Q(OrbCameraSelectorDialog);
    auto *info = ui.cameraTreeView->currentIndex().data(Qt::UserRole).value<OrbCam::DeviceInfo *>();
    if (!info || info->GetInterface()->GetType() != OrbCam::InterfaceGigEVision)
        return false;
    const QString id = model->getItemID(ui.cameraTreeView->currentIndex());
    SetIpDialog dialog(q);
    dialog.setObjectName(QStringLiteral("SetIpDialog"));
    {
        const SelectedCamera selected(info);
        int64_t nicMac = 0, nicIp = 0, nicMask = 0, cameraMac = 0, gateway = 0;
        if (!selected.read("GevInterfaceMACAddress", &nicMac)
            || !selected.read("GevInterfaceSubnetIPAddress", &nicIp)
            || !selected.read("GevInterfaceSubnetMask", &nicMask)
            || !selected.read("GevDeviceMACAddress", &cameraMac)
            || !selected.read("GevDeviceForceGateway", &gateway))
            return false;
        dialog.setNicMACAddress(static_cast<unsigned long long>(nicMac));
        dialog.setNicIPAddress(static_cast<unsigned>(nicIp));
        dialog.setNicNetmask(static_cast<unsigned>(nicMask));
        dialog.setMACAddress(static_cast<unsigned long long>(cameraMac));
        // The card's address with its lowest byte one up (one down from 129
        // on), as a first proposal in the card's subnet.
        const unsigned card = static_cast<unsigned>(nicIp);
        const unsigned low = card & 0xFF;
        dialog.setIPAddress((card & ~0xFFu) | (low < 129 ? low + 1 : low - 1));
        dialog.setNetmask(static_cast<unsigned>(nicMask));
        dialog.setGateway(static_cast<unsigned>(gateway));
    }
    dialog.setTakenAddresses(takenAddresses(info));
    info = nullptr;
    if (dialog.exec() != QDialog::Accepted)
        return true;
    const QModelIndex found = model->getItemIdx(id);
    info = found.data(Qt::UserRole).value<OrbCam::DeviceInfo *>();
    if (!info) {
        QMessageBox::warning(q, OrbCameraSelectorDialog::tr("Set IP Address"),
                             OrbCameraSelectorDialog::tr("The camera %1 is no longer there: "
                                                         "nothing was written.")
                                 .arg(id));
        return true;
    }
    if (!dialog.ipOk || !dialog.maskOk) {
        QMessageBox warning(QMessageBox::Critical,
                            OrbCameraSelectorDialog::tr("IP Configuration Warning"),
                            OrbCameraSelectorDialog::tr(
                                "Specified IP Configuraion is not correct, camera may become "
                                "undiscoverable\nPress OK to skip the IP Configuration, or press "
                                "Ignore to confirm"),
                            QMessageBox::Ok | QMessageBox::Ignore, q);
        warning.setObjectName(QStringLiteral("ipWarning"));
        if (warning.exec() != QMessageBox::Ignore)
            return true;
    }
    if (info->ForceIP(dialog.ipAddress(), dialog.Netmask(), dialog.Gateway()) != OrbCamOk)
        return false;
    currentChanged(ui.cameraTreeView->currentIndex());
    return true;
}

OrbCameraSelectorDialog::OrbCameraSelectorDialog(OrbCam::System *system, QWidget *parent, bool poll)
    : QDialog(parent)
    , d_ptr(new OrbCameraSelectorDialogPrivate(this, system))
{
    Q_D(OrbCameraSelectorDialog);
    d->init(poll);
}

OrbCameraSelectorDialog::~OrbCameraSelectorDialog()
{
    // The search calls into the hand-off: it lets go first (at once; a pass
    // under way finishes on the search thread).
    CameraSearch::instance().unsubscribe(d_func()->searchTicket);
}

bool OrbCameraSelectorDialog::isPollChecked()
{
    return d_func()->polling;
}

OrbCam::DeviceInfo *OrbCameraSelectorDialog::selectedCamera() const
{
    Q_D(const OrbCameraSelectorDialog);
    return d->ui.cameraTreeView->currentIndex().data(Qt::UserRole).value<OrbCam::DeviceInfo *>();
}

void OrbCameraSelectorDialog::setSelectedCamera(OrbCam::DeviceInfo *) { }

OrbCam::DeviceInfo *SelectCamera(OrbCam::System *system, const QString &title,
                                 unsigned long parentWindowId, bool poll)
{
    ensureApplication();
    OrbCameraSelectorDialog dialog(system, nullptr, poll);
    dialog.setWindowTitle(title);
    dialog.setModal(true);
    // Not inside a container of the host's window, which would take that
    // window out of the host's own: a window of its own, above the host's.
    placeOverForeignWindow(&dialog, parentWindowId);
    if (dialog.exec() != QDialog::Accepted)
        return nullptr;
    return dialog.selectedCamera();
}

} // namespace OrbGui

extern "C" {

OrbCam::DeviceInfo *SelectCameraA(OrbCam::System *system, const char *title,
                                  unsigned long parentWindowId, bool poll)
{
    return OrbGui::SelectCamera(system, OrbGui::titleFromUtf8(title), parentWindowId, poll);
}

OrbCam::DeviceInfo *SelectCameraW(OrbCam::System *system, const wchar_t *title,
                                  unsigned long parentWindowId, bool poll)
{
    return OrbGui::SelectCamera(system, OrbGui::titleFromUcs4(title), parentWindowId, poll);
}
}
