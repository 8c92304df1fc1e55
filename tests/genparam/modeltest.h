// Helpers for the parameter model tests.
#ifndef MODELTEST_H
#define MODELTEST_H

#include "genparam/genparamtreemodel.h"

#include <GenApi/GenApi.h>

#include <QAbstractItemModel>
#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include <memory>

namespace ModelTest {

inline QString dataDir()
{
    return QStringLiteral(ORB_TEST_DATA_DIR "/genparam");
}

// The model description over zero-filled memory.
struct TestDevice {
    TestDevice()
    {
        map._LoadXMLFromFile((dataDir() + QStringLiteral("/model.xml")).toUtf8().constData());
        map._Connect(&port);
    }
    GenApi::INode *node(const char *name) const { return map._GetNode(name); }
    GenApi::CNodeMapRef map;
    GenApi::CMemoryPort port;
};

// The first index (column 0) whose feature has this node name.
inline QModelIndex find(const QAbstractItemModel &model, const QString &name,
                        const QModelIndex &parent = QModelIndex())
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        auto *value = index.data(OrbGui::ValuePointerRole).value<GenApi::IValue *>();
        if (value && QString::fromUtf8(value->GetNode()->GetName().c_str()) == name)
            return index;
        const QModelIndex inner = find(model, name, index);
        if (inner.isValid())
            return inner;
    }
    return QModelIndex();
}

inline QModelIndex valueCell(const QAbstractItemModel &model, const QString &name)
{
    const QModelIndex index = find(model, name);
    return index.sibling(index.row(), 1);
}

// Runs QAbstractItemModelTester and fails on each of its findings except
// two that the parameter tree has on purpose: the value column of a
// category reports the same children as its name column (parents are always
// given in column 0), and a feature listed under two categories shares one
// record whose parent is its first category. findings() lists the rest.
class CheckedModelTester {
public:
    // shared: the text of every shared record's internal pointer as QDebug
    // prints it ("0x..."); a parent mismatch of such a row is expected.
    // throughProxy: the model is a QSortFilterProxyModel over the tree. The
    // proxy keeps a mapping per source parent, and the value-column parents
    // give every category's children a second one that goes stale when the
    // filter changes; parent() findings are then expected, all others not.
    explicit CheckedModelTester(QAbstractItemModel *model, bool throughProxy = false)
        : m_throughProxy(throughProxy)
    {
        instance() = this;
        m_previous = qInstallMessageHandler(&CheckedModelTester::handler);
        collectShared(*model, QModelIndex());
        m_tester = std::make_unique<QAbstractItemModelTester>(
            model, QAbstractItemModelTester::FailureReportingMode::Warning);
    }
    ~CheckedModelTester()
    {
        m_tester.reset();
        qInstallMessageHandler(m_previous);
        instance() = nullptr;
    }
    QStringList findings() const { return m_findings; }

private:
    static CheckedModelTester *&instance()
    {
        static CheckedModelTester *current = nullptr;
        return current;
    }

    void collectShared(const QAbstractItemModel &model, const QModelIndex &parent)
    {
        QHash<void *, int> seen;
        std::function<void(const QModelIndex &)> walk = [&](const QModelIndex &p) {
            for (int row = 0; row < model.rowCount(p); ++row) {
                const QModelIndex index = model.index(row, 0, p);
                if (++seen[index.internalPointer()] == 1)
                    walk(index);
            }
        };
        walk(parent);
        for (auto it = seen.cbegin(); it != seen.cend(); ++it)
            if (it.value() > 1)
                m_shared.insert(
                    QStringLiteral("0x%1").arg(reinterpret_cast<quintptr>(it.key()), 0, 16));
    }

    static void handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        CheckedModelTester *self = instance();
        if (!self || qstrcmp(context.category, "qt.modeltest") != 0) {
            if (self && self->m_previous)
                self->m_previous(type, context, message);
            return;
        }
        self->judge(message);
    }

    void judge(const QString &message)
    {
        static const QRegularExpression parents(
            QStringLiteral("index= QModelIndex\\((\\d+),(\\d+),(0x[0-9a-f]+),.*exp\\. parent= "
                           "QModelIndex\\((\\d+),(\\d+),(0x[0-9a-f]+),.*act\\. parent= "
                           "QModelIndex\\((\\d+),(\\d+),(0x[0-9a-f]+),"));
        const QRegularExpressionMatch m = parents.match(message);
        if (m.hasMatch()) {
            const bool valueColumnParent = m.captured(5) == QLatin1String("1")
                && m.captured(8) == QLatin1String("0") && m.captured(6) == m.captured(9)
                && m.captured(4) == m.captured(7);
            const bool sharedRecord = m_shared.contains(m.captured(3));
            m_nextFailureExpected = valueColumnParent || sharedRecord || m_throughProxy;
            if (!m_nextFailureExpected)
                m_findings << message;
            return;
        }
        if (!message.startsWith(QLatin1String("FAIL!")))
            return; // detail lines
        if (message.contains(QLatin1String("childIndex != childIndex1")))
            return; // the value column's children
        if ((m_nextFailureExpected || m_throughProxy)
            && message.contains(QLatin1String("model->parent(index)"))) {
            m_nextFailureExpected = false;
            return;
        }
        m_findings << message;
    }

    QtMessageHandler m_previous = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    QSet<QString> m_shared;
    QStringList m_findings;
    bool m_nextFailureExpected = false;
    bool m_throughProxy = false;
};

// The rows whose parent() is not the index they were reached through,
// among rows that occur once in the tree (shared rows report their first
// category on purpose).
inline QStringList wrongParents(const QAbstractItemModel &model)
{
    QHash<void *, int> seen;
    std::function<void(const QModelIndex &)> count = [&](const QModelIndex &parent) {
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex index = model.index(row, 0, parent);
            if (++seen[index.internalPointer()] == 1)
                count(index);
        }
    };
    count(QModelIndex());
    QStringList wrong;
    std::function<void(const QModelIndex &)> check = [&](const QModelIndex &parent) {
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < 2; ++column) {
                const QModelIndex index = model.index(row, column, parent);
                if (seen.value(index.internalPointer()) == 1 && model.parent(index) != parent)
                    wrong << index.data().toString();
            }
            const QModelIndex index = model.index(row, 0, parent);
            if (seen.value(index.internalPointer()) == 1)
                check(index);
        }
    };
    check(QModelIndex());
    return wrong;
}

} // namespace ModelTest

#endif
