// The cameras the camera access API can see, grouped by the interface that
// reaches them: a read-only, one-column, two-level item model for the camera
// selector. Interfaces and device infos belong to the API; the model only
// points at them.
//
// Threads: checkNew() may run on a polling thread while the GUI thread uses
// the model; everything else is GUI thread only. checkNew() writes only the
// fresh snapshot, which a mutex hands over to updateModel().
#ifndef ORBGUI_DEVICETREEMODEL_H
#define ORBGUI_DEVICETREEMODEL_H

#include <OrbCam/OrbCam.h>

#include <QAbstractItemModel>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

Q_DECLARE_METATYPE(OrbCam::DeviceInfo *)
Q_DECLARE_METATYPE(OrbCam::Interface *)

namespace OrbGui {

class DeviceTreeModel;

class DeviceTreeNode {
public:
    DeviceTreeNode(DeviceTreeModel *model, DeviceTreeNode *parent);
    virtual ~DeviceTreeNode();
    DeviceTreeNode(const DeviceTreeNode &) = delete;
    DeviceTreeNode &operator=(const DeviceTreeNode &) = delete;

    virtual QVariant data(int column, int role) const = 0;
    virtual bool hasChildren() const;
    virtual bool canFetchMore() const;
    virtual void fetchMore();

    DeviceTreeNode *parent() const { return m_parent; }
    int childCount() const { return static_cast<int>(m_children.size()); }
    DeviceTreeNode *child(int row) const;
    int row() const;

protected:
    std::vector<std::unique_ptr<DeviceTreeNode>> m_children;
    DeviceTreeNode *m_parent;
    DeviceTreeModel *m_model;
};

class RootNode : public DeviceTreeNode {
public:
    RootNode(DeviceTreeModel *model, OrbCam::System *system);
    QVariant data(int column, int role) const override;
    bool hasChildren() const override;
    bool canFetchMore() const override;
    void fetchMore() override;

private:
    OrbCam::System *m_system;
};

class InterfaceNode : public DeviceTreeNode {
public:
    InterfaceNode(DeviceTreeModel *model, DeviceTreeNode *parent, OrbCam::Interface *iface);
    QVariant data(int column, int role) const override;
    bool hasChildren() const override;
    bool canFetchMore() const override;
    void fetchMore() override;

private:
    OrbCam::Interface *m_interface;
};

class DeviceInfoNode : public DeviceTreeNode {
public:
    DeviceInfoNode(DeviceTreeModel *model, DeviceTreeNode *parent, OrbCam::DeviceInfo *info);
    QVariant data(int column, int role) const override;

private:
    OrbCam::DeviceInfo *m_info;
};

class DeviceTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    using Interfaces = std::vector<OrbCam::Interface *>;
    using Devices = std::map<QString, std::vector<OrbCam::DeviceInfo *>>;

    // With `discover`, the constructor runs a discovery pass first (it waits
    // for the cameras); without, it shows what the system found last.
    DeviceTreeModel(OrbCam::System *system, QObject *parent = nullptr, bool discover = true);
    ~DeviceTreeModel() override;

    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex index(DeviceTreeNode *node) const;
    QModelIndex parent(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

    // A snapshot of what the interfaces found, after a discovery pass (each
    // interface asked with a time-out of 200 ms) when `discover`.
    void getDevices(Interfaces &interfaces, Devices &devices, bool discover = true) const;
    // Shows what the interfaces found last when it differs from the tree;
    // never discovers, so it does not wait. True when the tree was rebuilt.
    // GUI thread.
    bool refresh();
    // Rediscovers and rebuilds at once. GUI thread.
    void rescan();
    // A fresh discovery pass; true when it differs from the displayed tree
    // (the same cameras in another order count as a change). Any thread.
    bool checkNew();
    // Shows the snapshot of the last checkNew that found a change. GUI thread.
    void updateModel();
    // The identifier of the interface or camera at index; empty for others.
    QString getItemID(const QModelIndex &index) const;
    // The index of the interface or camera with that identifier, or invalid.
    QModelIndex getItemIdx(const QString &id);
    // The first iface's index, or invalid when there is none.
    QModelIndex getFirstIdx();

    // For the nodes' lazy fetching.
    const Interfaces &displayedInterfaces() const { return m_interfaces; }
    const Devices &displayedDevices() const { return m_devices; }
    void beginInsert(DeviceTreeNode *parent, int first, int last);
    void endInsert();

private:
    // Each interface by identifier, with its cameras in order, each by
    // identifier and access status: a camera taken by another application
    // changes what the selector may offer as much as a new one.
    using Key = std::vector<std::pair<QString, std::vector<std::pair<QString, uint32_t>>>>;
    static Key keyOf(const Interfaces &interfaces, const Devices &devices);
    DeviceTreeNode *nodeOf(const QModelIndex &index) const;
    void rebuild();

    OrbCam::System *m_system;
    std::unique_ptr<RootNode> m_root;
    Interfaces m_interfaces;
    Devices m_devices;

    // Shared with the polling thread.
    std::mutex m_freshMutex;
    Interfaces m_freshInterfaces;
    Devices m_freshDevices;
    Key m_displayedKey; // what the tree shows, as identifiers
};

} // namespace OrbGui

#endif
