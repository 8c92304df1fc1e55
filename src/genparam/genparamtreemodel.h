// GenParamTreeModel: a GenICam node map as a two-column item model
// (feature name, value), categories as branches. Internal to the library.
#ifndef ORBGUI_GENPARAMTREEMODEL_H
#define ORBGUI_GENPARAMTREEMODEL_H

#include <GenApi/GenApi.h>

#include <QAbstractItemModel>
#include <QMap>
#include <QPointer>
#include <QScopedPointer>
#include <QVariant>

class QWidget;

namespace OrbGenParam {
class Array;
}

Q_DECLARE_METATYPE(GenApi::IValue *)

namespace OrbGui {

enum GenParamRoles {
    ValuePointerRole = Qt::UserRole, // the row's GenApi::IValue*
    ControlDataRole = Qt::UserRole + 1, // a ControlData with a new editor
    // True for a value the user changed through the model in this session
    // that does not read as it did before the first change.
    ChangedRole = Qt::UserRole + 2,
    // The feature's GenApi::EAccessMode as an int; nothing when it cannot be
    // read (or has not been read yet, see setReadsOffThread).
    AccessModeRole = Qt::UserRole + 3
};

// The error id of a failed write; reads use the failing role's number.
constexpr int WriteErrorId = 256;

// An editor for a row and its kind. Whoever takes it out of the variant owns
// the widget.
struct ControlData {
    enum Kind : quint8 {
        ComboBox = 0,
        PushButton = 1,
        SpinBox64 = 2,
        DoubleSpinBox = 3,
        LineEdit = 4
    };
    QWidget *control = nullptr;
    quint8 kind = ComboBox;
};

// The edit value of a number whose valid values are a list.
struct VariantData {
    QVariant value;
};

// The features whose reads or writes fail at the moment: name -> id ->
// message. Ids are the failing item role for reads and 256 for writes.
class GenParamErrorController {
public:
    // Adds the message unless the name already has an entry for id; true
    // when it added.
    template <class Name, class Message> bool SetError(Name &&name, Message &&message, int id)
    {
        QMap<int, QString> &ids = m_errors[QString(std::forward<Name>(name))];
        if (ids.contains(id))
            return false;
        ids.insert(id, QString(std::forward<Message>(message)));
        return true;
    }
    // True when it removed something; a name goes with its last id.
    bool ClearError(const QString &name, int id);
    bool hasErrors(const QString &name) const { return m_errors.contains(name); }
    // The message of the lowest id, or an empty string.
    QString firstError(const QString &name) const;
    int count() const { return m_errors.size(); }

private:
    QMap<QString, QMap<int, QString>> m_errors;
};

class GenParamTreeModelPrivate;

class GenParamTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    // Builds the tree below the node map's "Root" category. The node map is
    // not owned and must outlive the model. GenICam exceptions raised while
    // building propagate.
    GenParamTreeModel(GenApi::INodeMap *nodeMap, QObject *parent = nullptr);
    // The node map behind the array; the array is not kept.
    GenParamTreeModel(OrbGenParam::Array *array, QObject *parent = nullptr);
    ~GenParamTreeModel() override;

    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    const GenParamErrorController &errors() const { return m_errors; }

    // The user's writes through setData, newest last, as far back as the
    // model goes: undo() writes the value the newest one replaced and
    // forgets it. False, with the reason in *error, when there is nothing
    // to take back or the camera refuses (the write stays for another try).
    bool canUndo() const;
    bool undo(QString *error = nullptr);

    // On: a value read that would wait for the camera (one on the network,
    // or the node map in use by another thread) never runs on this thread.
    // It runs on the node map's DeviceReader; until it comes back the row
    // shows what was read last (nothing before the first read) and is
    // announced with dataChanged once read. Reads that need no wait (a
    // cached value, a camera in memory) stay immediate. Off by default.
    // Editors (ControlDataRole), the description (WhatsThisRole) and writes
    // still run here: the user asked for them.
    void setReadsOffThread(bool on);
    // One tick of the view's polling: the node map's Poll, and every value
    // read off this thread counts as old (read again when next shown). A
    // tick that finds the node map in use is skipped; the next one polls.
    void poll(int64_t elapsedMs);

Q_SIGNALS:
    void errorAppeared(const QModelIndex &idx, const QString &paramName, const QString &strErr,
                       int id) const;
    void errorDisappeared(const QModelIndex &idx, const QString &paramName, int id) const;

private:
    QVariant valueData(const QModelIndex &index, int role) const;

    mutable GenParamErrorController m_errors;
    Q_DECLARE_PRIVATE(GenParamTreeModel)
    Q_DISABLE_COPY(GenParamTreeModel)
    QScopedPointer<GenParamTreeModelPrivate> const d_ptr;
    friend class GenParamTreeModelPrivate;
};

} // namespace OrbGui

Q_DECLARE_METATYPE(OrbGui::ControlData)
Q_DECLARE_METATYPE(OrbGui::VariantData)

#endif
