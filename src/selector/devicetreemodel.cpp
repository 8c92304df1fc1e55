#include "devicetreemodel.h"

namespace OrbGui {

namespace {

QString fromAscii(const char *text)
{
    return text ? QString::fromLatin1(text) : QString();
}
QString fromUtf8(const char *text)
{
    return text ? QString::fromUtf8(text) : QString();
}

} // namespace

DeviceTreeNode::DeviceTreeNode(DeviceTreeModel *model, DeviceTreeNode *parent)
    : m_parent(parent)
    , m_model(model)
{
}

DeviceTreeNode::~DeviceTreeNode() = default;

bool DeviceTreeNode::hasChildren() const
{
    return false;
}
bool DeviceTreeNode::canFetchMore() const
{
    return false;
}
void DeviceTreeNode::fetchMore() { }

DeviceTreeNode *DeviceTreeNode::child(int row) const
{
    return row >= 0 && row < childCount() ? m_children[static_cast<size_t>(row)].get() : nullptr;
}

int DeviceTreeNode::row() const
{
    if (!m_parent)
        return 0;
    for (int r = 0; r < m_parent->childCount(); ++r)
        if (m_parent->child(r) == this)
            return r;
    return 0;
}

RootNode::RootNode(DeviceTreeModel *model, OrbCam::System *system)
    : DeviceTreeNode(model, nullptr)
    , m_system(system)
{
}

QVariant RootNode::data(int column, int role) const
{
    if (column == 0 && role == Qt::DisplayRole)
        return DeviceTreeModel::tr("Name");
    return QVariant();
}

bool RootNode::hasChildren() const
{
    return !m_children.empty() || !m_model->displayedInterfaces().empty();
}

bool RootNode::canFetchMore() const
{
    return m_children.empty() && !m_model->displayedInterfaces().empty();
}

void RootNode::fetchMore()
{
    const auto &interfaces = m_model->displayedInterfaces();
    if (interfaces.empty() || !m_children.empty())
        return;
    const int first = childCount();
    m_model->beginInsert(this, first, first + static_cast<int>(interfaces.size()) - 1);
    for (OrbCam::Interface *iface : interfaces)
        m_children.push_back(std::make_unique<InterfaceNode>(m_model, this, iface));
    m_model->endInsert();
}

InterfaceNode::InterfaceNode(DeviceTreeModel *model, DeviceTreeNode *parent,
                             OrbCam::Interface *iface)
    : DeviceTreeNode(model, parent)
    , m_interface(iface)
{
}

QVariant InterfaceNode::data(int column, int role) const
{
    if (column != 0)
        return QVariant();
    if (role == Qt::DisplayRole)
        return fromUtf8(m_interface->GetDescription());
    if (role == Qt::UserRole)
        return QVariant::fromValue(m_interface);
    return QVariant();
}

bool InterfaceNode::hasChildren() const
{
    if (!m_children.empty())
        return true;
    const auto &devices = m_model->displayedDevices();
    const auto it = devices.find(fromAscii(m_interface->GetID()));
    return it != devices.end() && !it->second.empty();
}

bool InterfaceNode::canFetchMore() const
{
    return m_children.empty() && hasChildren();
}

void InterfaceNode::fetchMore()
{
    const auto &devices = m_model->displayedDevices();
    const auto it = devices.find(fromAscii(m_interface->GetID()));
    if (!m_children.empty() || it == devices.end() || it->second.empty())
        return;
    m_model->beginInsert(this, 0, static_cast<int>(it->second.size()) - 1);
    for (OrbCam::DeviceInfo *info : it->second)
        m_children.push_back(std::make_unique<DeviceInfoNode>(m_model, this, info));
    m_model->endInsert();
}

DeviceInfoNode::DeviceInfoNode(DeviceTreeModel *model, DeviceTreeNode *parent,
                               OrbCam::DeviceInfo *info)
    : DeviceTreeNode(model, parent)
    , m_info(info)
{
}

QVariant DeviceInfoNode::data(int column, int role) const
{
    if (column != 0)
        return QVariant();
    if (role == Qt::DisplayRole)
        return fromUtf8(m_info->GetDisplayName());
    if (role == Qt::UserRole)
        return QVariant::fromValue(m_info);
    return QVariant();
}

DeviceTreeModel::DeviceTreeModel(OrbCam::System *system, QObject *parent, bool discover)
    : QAbstractItemModel(parent)
    , m_system(system)
{
    static const bool registered = [] {
        qRegisterMetaType<OrbCam::DeviceInfo *>("OrbCam::DeviceInfo*");
        qRegisterMetaType<OrbCam::Interface *>("OrbCam::Interface*");
        return true;
    }();
    Q_UNUSED(registered)
    getDevices(m_interfaces, m_devices, discover);
    {
        std::lock_guard<std::mutex> lock(m_freshMutex);
        m_displayedKey = keyOf(m_interfaces, m_devices);
    }
    m_root = std::make_unique<RootNode>(this, m_system);
}

DeviceTreeModel::~DeviceTreeModel() = default;

void DeviceTreeModel::getDevices(Interfaces &interfaces, Devices &devices, bool discover) const
{
    interfaces.clear();
    devices.clear();
    if (!m_system)
        return;
    OrbCam::InterfaceList *list = m_system->GetInterfaces(OrbCam::AllInterfaces);
    if (!list)
        return;
    for (OrbCam::Interface *iface = list->First(); iface; iface = list->Next()) {
        const QString key = fromAscii(iface->GetID());
        interfaces.push_back(iface);
        bool changed = false;
        if (discover)
            iface->UpdateDeviceList(&changed, 200);
        std::vector<OrbCam::DeviceInfo *> &found = devices[key];
        if (OrbCam::DeviceInfoList *infos = iface->GetDeviceInfoList()) {
            for (OrbCam::DeviceInfo *info = infos->First(); info; info = infos->Next())
                found.push_back(info);
            infos->Release();
        }
    }
}

DeviceTreeModel::Key DeviceTreeModel::keyOf(const Interfaces &interfaces, const Devices &devices)
{
    Key key;
    for (OrbCam::Interface *iface : interfaces) {
        const QString id = fromAscii(iface->GetID());
        std::vector<std::pair<QString, uint32_t>> ids;
        const auto it = devices.find(id);
        if (it != devices.end())
            for (OrbCam::DeviceInfo *info : it->second)
                ids.emplace_back(fromAscii(info->GetID()), info->GetAccessStatus());
        key.emplace_back(id, std::move(ids));
    }
    return key;
}

bool DeviceTreeModel::checkNew()
{
    Interfaces interfaces;
    Devices devices;
    getDevices(interfaces, devices);
    // Interfaces by identifier in order, then each one's cameras by
    // identifier and access status in order: another order is a change.
    Key key = keyOf(interfaces, devices);
    std::lock_guard<std::mutex> lock(m_freshMutex);
    if (key == m_displayedKey)
        return false;
    m_freshInterfaces = std::move(interfaces);
    m_freshDevices = std::move(devices);
    return true;
}

void DeviceTreeModel::rebuild()
{
    m_root = std::make_unique<RootNode>(this, m_system);
}

void DeviceTreeModel::rescan()
{
    beginResetModel();
    getDevices(m_interfaces, m_devices);
    {
        std::lock_guard<std::mutex> lock(m_freshMutex);
        m_displayedKey = keyOf(m_interfaces, m_devices);
    }
    rebuild();
    endResetModel();
}

bool DeviceTreeModel::refresh()
{
    Interfaces interfaces;
    Devices devices;
    getDevices(interfaces, devices, false);
    Key key = keyOf(interfaces, devices);
    {
        std::lock_guard<std::mutex> lock(m_freshMutex);
        if (key == m_displayedKey)
            return false;
    }
    beginResetModel();
    m_interfaces = std::move(interfaces);
    m_devices = std::move(devices);
    {
        std::lock_guard<std::mutex> lock(m_freshMutex);
        m_displayedKey = std::move(key);
    }
    rebuild();
    endResetModel();
    return true;
}

void DeviceTreeModel::updateModel()
{
    beginResetModel();
    {
        std::lock_guard<std::mutex> lock(m_freshMutex);
        m_interfaces = m_freshInterfaces;
        m_devices = m_freshDevices;
        m_displayedKey = keyOf(m_interfaces, m_devices);
    }
    rebuild();
    endResetModel();
}

DeviceTreeNode *DeviceTreeModel::nodeOf(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<DeviceTreeNode *>(index.internalPointer()) : m_root.get();
}

int DeviceTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

int DeviceTreeModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    return nodeOf(parent)->childCount();
}

QModelIndex DeviceTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || parent.column() > 0)
        return QModelIndex();
    DeviceTreeNode *child = nodeOf(parent)->child(row);
    return child ? createIndex(row, 0, child) : QModelIndex();
}

QModelIndex DeviceTreeModel::index(DeviceTreeNode *node) const
{
    if (!node || node == m_root.get())
        return QModelIndex();
    return createIndex(node->row(), 0, node);
}

QModelIndex DeviceTreeModel::parent(const QModelIndex &index) const
{
    if (!index.isValid())
        return QModelIndex();
    return this->index(nodeOf(index)->parent());
}

QVariant DeviceTreeModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    return nodeOf(index)->data(index.column(), role);
}

QVariant DeviceTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_root->data(section, 0);
    return QVariant();
}

Qt::ItemFlags DeviceTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return QAbstractItemModel::flags(index);
}

bool DeviceTreeModel::hasChildren(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return false;
    return nodeOf(parent)->hasChildren();
}

bool DeviceTreeModel::canFetchMore(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return false;
    return nodeOf(parent)->canFetchMore();
}

void DeviceTreeModel::fetchMore(const QModelIndex &parent)
{
    if (parent.column() > 0)
        return;
    nodeOf(parent)->fetchMore();
}

void DeviceTreeModel::beginInsert(DeviceTreeNode *parent, int first, int last)
{
    beginInsertRows(index(parent), first, last);
}

void DeviceTreeModel::endInsert()
{
    endInsertRows();
}

QString DeviceTreeModel::getItemID(const QModelIndex &index) const
{
    const QVariant value = index.data(Qt::UserRole);
    if (value.canConvert<OrbCam::DeviceInfo *>())
        if (auto *info = value.value<OrbCam::DeviceInfo *>())
            return fromAscii(info->GetID());
    if (value.canConvert<OrbCam::Interface *>())
        if (auto *iface = value.value<OrbCam::Interface *>())
            return fromAscii(iface->GetID());
    return QString();
}

QModelIndex DeviceTreeModel::getItemIdx(const QString &id)
{
    if (canFetchMore(QModelIndex()))
        fetchMore(QModelIndex());
    for (int row = 0; row < rowCount(); ++row) {
        const QModelIndex iface = index(row, 0);
        if (getItemID(iface) == id)
            return iface;
        if (canFetchMore(iface))
            fetchMore(iface);
        for (int child = 0; child < rowCount(iface); ++child) {
            const QModelIndex device = index(child, 0, iface);
            if (getItemID(device) == id)
                return device;
        }
    }
    return QModelIndex();
}

QModelIndex DeviceTreeModel::getFirstIdx()
{
    if (canFetchMore(QModelIndex()))
        fetchMore(QModelIndex());
    return index(0, 0);
}

} // namespace OrbGui
