// Helpers shared by the feature dialog tests.
#ifndef ORBGUI_TESTS_DIALOGTEST_H
#define ORBGUI_TESTS_DIALOGTEST_H

#include "orbcam/orbcamtest.h"

#include <GenApi/GenApi.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QSet>
#include <QtTest>

using OrbCamTest::DeviceRef;
using OrbCamTest::SystemRef;

namespace DialogTest {

struct Camera {
    explicit Camera(const char *iface = "GEV0")
        : device(sys.cameras(iface).front())
    {
    }
    OrbGenParam::Array *params() const { return device.params(); }
    SystemRef sys;
    DeviceRef device;
};

template <class T> inline T *child(QWidget *dialog, const char *name)
{
    T *found = dialog->findChild<T *>(QString::fromLatin1(name));
    if (!found)
        qWarning("no %s", name);
    return found;
}

// Picks an entry of a combo box as a user does: opens its list, moves to the
// entry and takes it.
inline void pick(QComboBox *box, const QString &text)
{
    box->showPopup();
    QAbstractItemView *list = box->view();
    QTRY_VERIFY(list->isVisible());
    list->setCurrentIndex(list->model()->index(box->findText(text), 0));
    QTest::keyClick(list->viewport(), Qt::Key_Return);
    QTRY_VERIFY(!list->isVisible());
}

// The registers a camera was written at since the last look, whoever wrote
// them through its devices.
class WriteJournal {
public:
    explicit WriteJournal(OrbCam::Device *device)
        : m_id(device->GetInfo()->GetID())
    {
        take();
    }
    // What writing the feature's own value writes, as the camera's
    // description resolves it now (a command is executed).
    QSet<qint64> writesOf(OrbGenParam::Array *params, const char *feature)
    {
        take();
        GenApi::INode *node = params->GetNodeMap()->GetNode(feature);
        if (GenApi::CCommandPtr command = node)
            command->Execute();
        else if (GenApi::CValuePtr value = node)
            value->FromString(value->ToString());
        else
            qWarning("no feature %s", feature);
        return take();
    }
    QSet<qint64> take()
    {
        std::vector<OrbCamSim::Write> writes;
        if (OrbCamSim::TakeWrites(m_id, &writes) != OrbCamOk)
            qWarning("no journal for %s", m_id.c_str());
        QSet<qint64> addresses;
        for (const OrbCamSim::Write &write : writes)
            addresses.insert(write.address);
        return addresses;
    }

private:
    std::string m_id;
};

inline bool show(QDialog *dialog)
{
    dialog->show();
    dialog->activateWindow();
    return QTest::qWaitForWindowActive(dialog);
}

} // namespace DialogTest

using namespace DialogTest;

#endif
