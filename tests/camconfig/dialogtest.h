// Helpers shared by the feature dialog tests.
#ifndef ORBGUI_TESTS_DIALOGTEST_H
#define ORBGUI_TESTS_DIALOGTEST_H

#include "orbcam/orbcamtest.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
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

inline bool show(QDialog *dialog)
{
    dialog->show();
    dialog->activateWindow();
    return QTest::qWaitForWindowActive(dialog);
}

} // namespace DialogTest

using namespace DialogTest;

#endif
