// Real cameras through the Aravis backend, end to end: inside a network
// namespace this test makes for itself, with only loopback up (GigE Vision
// discovery broadcasts, and nothing may leave the machine), Aravis's fake
// GigE Vision cameras serve a description of our own; discovery, the
// interface features, the parameter tree view and a lost camera are checked
// through the real interfaces. A GVCP peer of the test's own checks force IP
// byte for byte. Where no namespace can be made the tests are skipped and
// say why.
// Aravis (GLib) before any Qt header: Qt's `signals` keyword would take
// GLib's struct member of that name.
#include <arv.h>

#include "fakecamera.h"

#include <GenApi/GenApi.h>
#include <OrbCam/OrbCam.h>
#include <OrbGui/orbcameraselectordialog.h>
#include <OrbGui/orbcamconfig.h>
#include <OrbGui/orbgenparamtreeview.h>

#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QLabel>
#include <QLineEdit>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QToolTip>
#include <QTreeView>
#include <QtTest>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>

namespace {

// Runs `use` on an Aravis device of the fake camera at `address`, opened
// past our API: the camera's memory as the device itself holds it.
bool withRawDevice(const char *address, const std::function<bool(ArvDevice *)> &use)
{
    ArvInterface *gv = arv_gv_interface_get_instance();
    arv_interface_update_device_list(gv);
    for (unsigned i = 0; i < arv_interface_get_n_devices(gv); ++i) {
        if (qstrcmp(arv_interface_get_device_address(gv, i), address) != 0)
            continue;
        GError *error = nullptr;
        ArvDevice *device
            = arv_interface_open_device(gv, arv_interface_get_device_id(gv, i), &error);
        g_clear_error(&error);
        if (!device)
            return false;
        const bool done = use(device);
        g_object_unref(device);
        return done;
    }
    return false;
}

QByteArray rawMemory(const char *address, guint64 at, guint32 size)
{
    QByteArray bytes(static_cast<int>(size), '\0');
    const bool read = withRawDevice(address, [&](ArvDevice *device) {
        GError *error = nullptr;
        const bool ok = arv_device_read_memory(device, at, size, bytes.data(), &error);
        g_clear_error(&error);
        return ok;
    });
    return read ? bytes : QByteArray();
}

// Writes the camera's memory past our API, as the camera itself would
// change (its own sensor set-up, say).
bool rawWrite(const char *address, guint64 at, QByteArray bytes)
{
    return withRawDevice(address, [&](ArvDevice *device) {
        GError *error = nullptr;
        const bool ok = arv_device_write_memory(device, at, static_cast<guint32>(bytes.size()),
                                                bytes.data(), &error);
        g_clear_error(&error);
        return ok;
    });
}

// A GigE Vision peer of the test's own on the GVCP port: answers discovery
// as a camera at `ip` with `mac`, and records the FORCEIP command it gets
// (and acknowledges it).
class GvcpPeer {
public:
    // status: what the peer answers FORCEIP with (0: success).
    GvcpPeer(uint32_t ip, uint64_t mac, uint16_t status = 0)
        : m_ip(ip)
        , m_mac(mac)
        , m_status(status)
    {
        m_socket = socket(AF_INET, SOCK_DGRAM, 0);
        const int on = 1;
        setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in any {};
        any.sin_family = AF_INET;
        any.sin_port = htons(3956);
        any.sin_addr.s_addr = htonl(INADDR_ANY);
        m_bound = bind(m_socket, reinterpret_cast<sockaddr *>(&any), sizeof any) == 0;
        m_thread = std::thread([this] { serve(); });
    }
    ~GvcpPeer()
    {
        m_stop = true;
        m_thread.join();
        close(m_socket);
    }
    bool bound() const { return m_bound; }
    QByteArray forceIp() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_forceIp;
    }

private:
    static void put(QByteArray &b, int at, uint64_t value, int bytes)
    {
        for (int i = 0; i < bytes; ++i)
            b[at + i] = static_cast<char>(value >> (8 * (bytes - 1 - i)));
    }
    void serve()
    {
        while (!m_stop) {
            pollfd readable { m_socket, POLLIN, 0 };
            if (poll(&readable, 1, 50) <= 0)
                continue;
            char buffer[600];
            sockaddr_in from {};
            socklen_t fromSize = sizeof from;
            const ssize_t got = recvfrom(m_socket, buffer, sizeof buffer, 0,
                                         reinterpret_cast<sockaddr *>(&from), &fromSize);
            if (got < 8 || static_cast<uint8_t>(buffer[0]) != 0x42)
                continue;
            const int command
                = (static_cast<uint8_t>(buffer[2]) << 8) | static_cast<uint8_t>(buffer[3]);
            const uint16_t request = static_cast<uint16_t>((static_cast<uint8_t>(buffer[6]) << 8)
                                                           | static_cast<uint8_t>(buffer[7]));
            QByteArray answer(8, '\0');
            if (command == 0x0002) { // DISCOVERY_CMD
                answer.resize(8 + 0xF8);
                answer.fill('\0');
                put(answer, 2, 0x0003, 2);
                put(answer, 4, 0xF8, 2);
                put(answer, 6, request, 2);
                char *p = answer.data() + 8;
                p[1] = 2; // version 2.0
                put(answer, 8 + 0x08, m_mac >> 32, 4);
                put(answer, 8 + 0x0C, m_mac & 0xFFFFFFFF, 4);
                put(answer, 8 + 0x24, m_ip, 4);
                put(answer, 8 + 0x34, 0xFF000000, 4);
                std::strcpy(p + 0x48, "Peer Vendor");
                std::strcpy(p + 0x68, "Peer Model");
                std::strcpy(p + 0xD8, "PEER01");
            } else if (command == 0x0004) { // FORCEIP_CMD
                {
                    std::lock_guard<std::mutex> lock(m_mutex);
                    m_forceIp = QByteArray(buffer, static_cast<int>(got));
                }
                put(answer, 0, m_status, 2);
                put(answer, 2, 0x0005, 2);
                put(answer, 6, request, 2);
            } else {
                continue;
            }
            sendto(m_socket, answer.constData(), static_cast<size_t>(answer.size()), 0,
                   reinterpret_cast<sockaddr *>(&from), fromSize);
        }
    }

    uint32_t m_ip;
    uint64_t m_mac;
    uint16_t m_status;
    int m_socket = -1;
    bool m_bound = false;
    std::atomic<bool> m_stop { false };
    std::thread m_thread;
    mutable std::mutex m_mutex;
    QByteArray m_forceIp;
};

struct SystemRef {
    SystemRef() { system = OrbCam_GetSystem(&err); }
    ~SystemRef()
    {
        if (system)
            OrbCam_ReleaseSystem(system);
    }
    OrbCam::Interface *gigE() const
    {
        OrbCam::InterfaceList *list
            = system->GetInterfaces(1u << (OrbCam::InterfaceGigEVision - 1));
        for (OrbCam::Interface *i = list->First(); i; i = list->Next())
            if (qstrcmp(i->GetID(), "GEV/lo") == 0)
                return i;
        return nullptr;
    }
    std::vector<OrbCam::DeviceInfo *> cameras() const
    {
        std::vector<OrbCam::DeviceInfo *> found;
        OrbCam::Interface *i = gigE();
        if (!i)
            return found;
        i->UpdateDeviceList(nullptr, 1000);
        OrbCam::DeviceInfoList *list = i->GetDeviceInfoList();
        for (OrbCam::DeviceInfo *d = list->First(); d; d = list->Next())
            found.push_back(d);
        list->Release();
        return found;
    }
    // The camera with this serial number after a fresh discovery, or null.
    OrbCam::DeviceInfo *camera(const char *serial) const
    {
        for (OrbCam::DeviceInfo *c : cameras())
            if (qstrcmp(c->GetSerialNumber(), serial) == 0)
                return c;
        return nullptr;
    }
    OrbCam::System *system = nullptr;
    OrbCamErr err = OrbCamOk;
};

// An open device, released however the test ends: a failed check must not
// leave a device behind to slow the tests after it.
struct OpenDevice {
    explicit OpenDevice(OrbCam::DeviceInfo *info, OrbCamErr *err = nullptr)
        : device(info ? OrbCam_CreateDevice(info, OrbCam::AccessControl, 0, err) : nullptr)
    {
    }
    ~OpenDevice() { release(); }
    void release()
    {
        if (device)
            OrbCam_ReleaseDevice(device);
        device = nullptr;
    }
    OpenDevice(const OpenDevice &) = delete;
    OpenDevice &operator=(const OpenDevice &) = delete;
    OrbCam::Device *device;
};

void onEvent(const void *data, size_t, void *context)
{
    static_cast<std::atomic<uint32_t> *>(context)->store(*static_cast<const uint32_t *>(data));
}

} // namespace

class tst_OrbCamAravis : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void backendChoice();
    void discoveryAndInterfaceFeatures();
    void discoveryTellsWhatAravisDoesNot();
    void accessStatusBeforeOpening();
    void treeViewEditReachesTheCamera();
    void selectorChoosesARealCamera();
    void configWindowShowsTheRealCamera();
    void windowsFollowALostCamera();
    void lostCameraIsReported();
    void forceIpReachesTheCamera();
    void forceIpReportsTheAnswer();

private:
    QProcess *startFake(const QString &address, const QString &serial);

    QTemporaryDir m_dir;
    QString m_model;
    std::vector<std::unique_ptr<QProcess>> m_fakes;
};

void tst_OrbCamAravis::initTestCase()
{
    if (!(OrbCam_AvailableBackends() & OrbCam::BackendAravis))
        QSKIP("this build has no Aravis backend");
    QString why;
    if (QStandardPaths::findExecutable(QString::fromLatin1(FakeCamera::Program)).isEmpty())
        QSKIP("arv-fake-gv-camera-0.8 (Debian: aravis-tools) is not installed");
    if (!FakeCamera::enterNamespace({ QStringLiteral("127.0.0.2"), QStringLiteral("127.0.0.3"),
                                      QStringLiteral("127.0.0.9") },
                                    why))
        QSKIP(qPrintable(QStringLiteral("no private network for GigE Vision tests: ") + why));
    QVERIFY(m_dir.isValid());
    m_model = m_dir.filePath(QStringLiteral("orbsim-c2000-fake.xml"));
    const std::string model = FakeCamera::fakeCameraModel();
    QVERIFY(!model.empty());
    QFile out(m_model);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(model.data(), static_cast<qint64>(model.size()));
    out.close();
    QVERIFY(startFake(QStringLiteral("127.0.0.2"), QStringLiteral("ORB-A")));
    QVERIFY(startFake(QStringLiteral("127.0.0.3"), QStringLiteral("ORB-B")));
    QCOMPARE(OrbCam_SetBackends(OrbCam::BackendAravis), OrbCamOk);
}

QProcess *tst_OrbCamAravis::startFake(const QString &address, const QString &serial)
{
    auto process = std::make_unique<QProcess>();
    process->start(QString::fromLatin1(FakeCamera::Program),
                   { QStringLiteral("-i"), address, QStringLiteral("-s"), serial,
                     QStringLiteral("-g"), m_model });
    if (!process->waitForStarted(3000))
        return nullptr;
    // It answers once its sockets are bound; a moment is enough.
    QTest::qWait(300);
    if (process->state() != QProcess::Running)
        return nullptr;
    m_fakes.push_back(std::move(process));
    return m_fakes.back().get();
}

void tst_OrbCamAravis::cleanupTestCase()
{
    for (auto &fake : m_fakes) {
        fake->kill();
        fake->waitForFinished(3000);
    }
    OrbCam_SetBackends(OrbCam::BackendSimulated);
}

void tst_OrbCamAravis::backendChoice()
{
    QCOMPARE(OrbCam_SetBackends(0), OrbCamErrInvalidArgument);
    QCOMPARE(OrbCam_SetBackends(8), OrbCamErrInvalidArgument);
    {
        SystemRef ref;
        QVERIFY(ref.system);
        // While a system is in use the choice stands.
        QCOMPARE(OrbCam_SetBackends(OrbCam::BackendSimulated), OrbCamErrInvalidState);
        QCOMPARE(OrbCam_GetBackends(), uint32_t(OrbCam::BackendAravis));
    }
    QCOMPARE(OrbCam_SetBackends(OrbCam::BackendSimulated | OrbCam::BackendAravis), OrbCamOk);
    {
        // Side by side: the simulated interfaces first, then the real ones.
        SystemRef ref;
        OrbCam::InterfaceList *list = ref.system->GetInterfaces(OrbCam::AllInterfaces);
        QStringList ids;
        for (OrbCam::Interface *i = list->First(); i; i = list->Next())
            ids << QString::fromLatin1(i->GetID());
        QCOMPARE(ids.first(), QStringLiteral("GEV0"));
        QVERIFY2(ids.contains(QStringLiteral("GEV/lo")), qPrintable(ids.join(QLatin1Char(' '))));
        QVERIFY(ids.contains(QStringLiteral("U3V")));
    }
    QCOMPARE(OrbCam_SetBackends(OrbCam::BackendAravis), OrbCamOk);
}

void tst_OrbCamAravis::discoveryAndInterfaceFeatures()
{
    SystemRef ref;
    QVERIFY(ref.system);
    OrbCam::Interface *lo = ref.gigE();
    QVERIFY(lo);
    QCOMPARE(lo->GetType(), uint32_t(OrbCam::InterfaceGigEVision));
    const std::vector<OrbCam::DeviceInfo *> cameras = ref.cameras();
    QStringList serials;
    for (OrbCam::DeviceInfo *c : cameras)
        serials << QString::fromLatin1(c->GetSerialNumber());
    serials.sort();
    QCOMPARE(serials, QStringList({ QStringLiteral("ORB-A"), QStringLiteral("ORB-B") }));

    OrbGenParam::Array *features = lo->GetParams();
    QVERIFY(features);
    QCOMPARE(features->GetInt("GevInterfaceSubnetIPAddress")->GetValue(), int64_t(0x7F000001));
    QCOMPARE(features->GetInt("GevInterfaceSubnetMask")->GetValue(), int64_t(0xFF000000));
    for (OrbCam::DeviceInfo *camera : cameras) {
        QCOMPARE(camera->GetAccessStatus(), uint32_t(OrbCam::AccessReadWrite));
        QCOMPARE(camera->GetInterface(), lo);
        lo->Lock();
        features->GetInt("DeviceSelector")->SetValue(camera->GetIndex());
        const int64_t ip = features->GetInt("GevDeviceIPAddress")->GetValue();
        lo->Unlock();
        QCOMPARE(ip,
                 qstrcmp(camera->GetSerialNumber(), "ORB-A") == 0 ? int64_t(0x7F000002)
                                                                  : int64_t(0x7F000003));
    }
}

namespace {
uint32_t bigEndian(const QByteArray &b)
{
    return b.size() < 4 ? 0
                        : (uint32_t(uint8_t(b[0])) << 24) | (uint32_t(uint8_t(b[1])) << 16)
            | (uint32_t(uint8_t(b[2])) << 8) | uint32_t(uint8_t(b[3]));
}
QString fieldText(const QByteArray &b)
{
    return QString::fromLatin1(b.left(b.indexOf('\0') < 0 ? b.size() : b.indexOf('\0')));
}
} // namespace

// The camera's mask, gateway, version and user-defined name, which Aravis's
// discovery does not pass on, come from our own discovery: as the camera's
// bootstrap registers hold them.
void tst_OrbCamAravis::discoveryTellsWhatAravisDoesNot()
{
    QVERIFY(rawWrite("127.0.0.2", 0xE8, QByteArray("Line 9\0", 7)));
    const uint32_t mask = bigEndian(rawMemory("127.0.0.2", 0x34, 4));
    const uint32_t gateway = bigEndian(rawMemory("127.0.0.2", 0x44, 4));
    const QString version = fieldText(rawMemory("127.0.0.2", 0x88, 32));
    QVERIFY(!version.isEmpty());
    SystemRef ref;
    OrbCam::DeviceInfo *camera = ref.camera("ORB-A");
    QVERIFY(camera);
    QCOMPARE(QString::fromLatin1(camera->GetUserName()), QStringLiteral("Line 9"));
    QCOMPARE(QString::fromLatin1(camera->GetVersion()), version);
    OrbCam::Interface *lo = ref.gigE();
    OrbGenParam::Array *features = lo->GetParams();
    lo->Lock();
    features->GetInt("DeviceSelector")->SetValue(camera->GetIndex());
    const int64_t shownMask = features->GetInt("GevDeviceSubnetMask")->GetValue();
    const int64_t shownGateway = features->GetInt("GevDeviceGateway")->GetValue();
    lo->Unlock();
    QCOMPARE(shownMask, int64_t(mask));
    QCOMPARE(shownGateway, int64_t(gateway));
}

// A camera that another application controls is listed as such before
// anyone tries to open it (its privilege register, read without taking
// control), and as free again once that application lets go.
void tst_OrbCamAravis::accessStatusBeforeOpening()
{
    uint32_t whileHeld = 0;
    // Aravis opened past our API is the other application: it takes control.
    QVERIFY(withRawDevice("127.0.0.3", [&](ArvDevice *) {
        SystemRef ref;
        OrbCam::DeviceInfo *camera = ref.camera("ORB-B");
        whileHeld = camera ? camera->GetAccessStatus() : 0;
        return camera != nullptr;
    }));
    QCOMPARE(whileHeld, uint32_t(OrbCam::AccessReadOnly));
    SystemRef ref;
    OrbCam::DeviceInfo *camera = ref.camera("ORB-B");
    QVERIFY(camera);
    QCOMPARE(camera->GetAccessStatus(), uint32_t(OrbCam::AccessReadWrite));
    // Our own open device is no other application's hold.
    OrbCamErr err = OrbCamOk;
    OrbCam::Device *device = OrbCam_CreateDevice(camera, OrbCam::AccessControl, 0, &err);
    QVERIFY2(device, OrbCam_ErrorText(err));
    QVERIFY(ref.camera("ORB-B"));
    QCOMPARE(camera->GetAccessStatus(), uint32_t(OrbCam::AccessReadWrite));
    OrbCam_ReleaseDevice(device);
}

void tst_OrbCamAravis::treeViewEditReachesTheCamera()
{
    SystemRef ref;
    OrbCam::DeviceInfo *cameraA = ref.camera("ORB-A");
    QVERIFY(cameraA);
    OrbCamErr err = OrbCamOk;
    OrbCam::Device *device = OrbCam_CreateDevice(cameraA, OrbCam::AccessControl, 0, &err);
    QVERIFY2(device, OrbCam_ErrorText(err));
    {
        OrbGui::OrbGenParamTreeView view(device->GetParams());
        view.resize(600, 700);
        view.show();
        view.treeView()->expandAll();
        QAbstractItemModel *model = view.treeView()->model();
        QModelIndex name;
        std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
            for (int row = 0; row < model->rowCount(parent) && !name.isValid(); ++row) {
                const QModelIndex index = model->index(row, 0, parent);
                if (index.data().toString() == QLatin1String("Device User ID"))
                    name = index;
                search(index);
            }
        };
        search(QModelIndex());
        QVERIFY(name.isValid());
        QVERIFY(model->setData(name.sibling(name.row(), 1), QStringLiteral("Line 7")));
        QCOMPARE(name.sibling(name.row(), 1).data().toString(), QStringLiteral("Line 7"));
    }
    OrbCam_ReleaseDevice(device);
    // DeviceUserID sits at 0x10010 in the simulated model, at 0x8010 here.
    const QByteArray stored = rawMemory("127.0.0.2", 0x8010, 16);
    QCOMPARE(stored.left(7), QByteArray("Line 7\0", 7));
}

void tst_OrbCamAravis::selectorChoosesARealCamera()
{
    SystemRef ref;
    OrbGui::OrbCameraSelectorDialog dialog(ref.system);
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto *tree = dialog.findChild<QTreeView *>(QStringLiteral("cameraTreeView"));
    QVERIFY(tree);
    QModelIndex camera;
    std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
        QAbstractItemModel *model = tree->model();
        for (int row = 0; row < model->rowCount(parent) && !camera.isValid(); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            if (index.data().toString().contains(QLatin1String("ORB-A")))
                camera = index;
            search(index);
        }
    };
    QTRY_VERIFY_WITH_TIMEOUT((search(QModelIndex()), camera.isValid()), 10000);
    tree->scrollTo(camera);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, Qt::NoModifier,
                      tree->visualRect(camera).center());
    QTest::keyClick(tree, Qt::Key_Return);
    QTRY_COMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(dialog.selectedCamera());
    QCOMPARE(QByteArray(dialog.selectedCamera()->GetSerialNumber()), QByteArray("ORB-A"));
}

// The configuration window on a real camera shows what the camera's own
// registers hold: frame A's size, set behind our back, read through Aravis.
void tst_OrbCamAravis::configWindowShowsTheRealCamera()
{
    // Frame A's width and height registers (0x2001C, 0x20020 in the
    // simulated model), big-endian.
    QVERIFY(rawWrite("127.0.0.2", 0x901C, QByteArray::fromHex("00000500")));
    QVERIFY(rawWrite("127.0.0.2", 0x9020, QByteArray::fromHex("000003C0")));
    SystemRef ref;
    OrbCam::DeviceInfo *cameraA = ref.camera("ORB-A");
    QVERIFY(cameraA);
    const OpenDevice opened(cameraA);
    OrbCam::Device *device = opened.device;
    QVERIFY(device);
    {
        OrbGui::OrbCamConfig window(device);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        auto *size = window.findChild<QLineEdit *>(QStringLiteral("lineEditSizeFrameA"));
        QVERIFY(size);
        QTRY_COMPARE(size->text(), QStringLiteral("1280x960"));
        auto *status = window.findChild<QLabel *>(QStringLiteral("statusText"));
        QVERIFY(status);
        QCOMPARE(status->text(), QStringLiteral("OrbSim-C2000"));
    }
}

// The camera stops answering (its process killed, as a pulled cable) while
// the configuration window, one of its dialogs and the tree view show it:
// within 3 s the window says so and the dialog lets go; a write in the tree
// meanwhile is refused with a message; once the camera answers again, the
// window shows its values again and a write lands.
void tst_OrbCamAravis::windowsFollowALostCamera()
{
    SystemRef ref;
    OrbCam::DeviceInfo *cameraB = ref.camera("ORB-B");
    QVERIFY(cameraB);
    const OpenDevice opened(cameraB);
    OrbCam::Device *device = opened.device;
    QVERIFY(device);
    {
        OrbGui::OrbCamConfig window(device);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto *size = window.findChild<QLineEdit *>(QStringLiteral("lineEditSizeFrameA"));
        auto *status = window.findChild<QLabel *>(QStringLiteral("statusText"));
        QTRY_VERIFY(!size->text().isEmpty());
        window.findChild<QPushButton *>(QStringLiteral("pushBtnTrigger"))->click();
        auto *trigger = window.findChild<QCheckBox *>(QStringLiteral("chBoxTriggerEnable"));
        QVERIFY(trigger);
        QTRY_VERIFY(trigger->isVisible() && trigger->isEnabled());
        OrbGui::OrbGenParamTreeView view(device->GetParams());
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.treeView()->expandAll();
        QAbstractItemModel *model = view.treeView()->model();
        QModelIndex userName;
        std::function<void(const QModelIndex &)> search = [&](const QModelIndex &parent) {
            for (int row = 0; row < model->rowCount(parent); ++row) {
                const QModelIndex index = model->index(row, 0, parent);
                if (index.data().toString() == QLatin1String("Device User ID"))
                    userName = index.siblingAtColumn(1);
                search(index);
            }
        };
        search(QModelIndex());
        QVERIFY(userName.isValid());

        // The user begins an edit in the tree; the camera goes meanwhile.
        QTreeView *tree = view.treeView();
        tree->scrollTo(userName);
        tree->setCurrentIndex(userName);
        tree->edit(userName);
        auto *edit = qobject_cast<QLineEdit *>(tree->indexWidget(userName));
        QVERIFY(edit);
        edit->selectAll();
        QTest::keyClicks(edit, QStringLiteral("Lost"));

        m_fakes.back()->kill();
        m_fakes.back()->waitForFinished(3000);
        // The event within 3 s, and the window's once-a-second tick after it.
        QTRY_COMPARE_WITH_TIMEOUT(status->text(), QStringLiteral("Disconnected"), 4500);
        QVERIFY(size->text().isEmpty()); // no stale numbers
        QTRY_VERIFY(!trigger->isEnabled());
        // The tree's values are marked, not stale.
        QCOMPARE(userName.data().toString(), QStringLiteral("<Value not available>"));
        // Enter: refused, and said; nothing is kept to be written later.
        QTest::keyClick(edit, Qt::Key_Return);
        QTRY_VERIFY(QToolTip::isVisible());
        QVERIFY2(QToolTip::text().contains(QLatin1String("Not written")),
                 qPrintable(QToolTip::text()));

        QVERIFY(startFake(QStringLiteral("127.0.0.3"), QStringLiteral("ORB-B")));
        QTRY_VERIFY_WITH_TIMEOUT(status->text() != QLatin1String("Disconnected"), 4500);
        QTRY_VERIFY(!size->text().isEmpty());
        QTRY_VERIFY(trigger->isEnabled());
        // The tree reads the camera again (beside the GUI thread).
        QTRY_COMPARE(userName.data().toString(),
                     QString::fromLatin1(rawMemory("127.0.0.3", 0x8010, 16).constData()));
        // Nothing of the refused edit reached the camera once it was back.
        QVERIFY(!rawMemory("127.0.0.3", 0x8010, 5).startsWith("Lost"));
        QVERIFY(model->setData(userName, QStringLiteral("Again")));
        QCOMPARE(rawMemory("127.0.0.3", 0x8010, 6), QByteArray("Again\0", 6));
    }
}

void tst_OrbCamAravis::lostCameraIsReported()
{
    SystemRef ref;
    OrbCam::DeviceInfo *cameraB = ref.camera("ORB-B");
    QVERIFY(cameraB);
    OpenDevice opened(cameraB);
    OrbCam::Device *device = opened.device;
    QVERIFY(device);
    std::atomic<uint32_t> event { 0 };
    QCOMPARE(device->RegisterEventCallback(OrbCam::EventDeviceLost, onEvent, &event), OrbCamOk);
    QVERIFY(device->IsConnected());
    m_fakes.back()->kill();
    m_fakes.back()->waitForFinished(3000);
    // Our own check notices within a few answer times, long before Aravis's
    // heartbeat would.
    QTRY_COMPARE_WITH_TIMEOUT(event.load(), uint32_t(OrbCam::EventDeviceLost), 3000);
    QVERIFY(!device->IsConnected());
    // Every access fails, and says why, until the camera is back.
    OrbCamErr err = OrbCamOk;
    device->GetParams()->GetInt("Width")->GetValue(&err);
    QCOMPARE(err, OrbCamErrNoDevice);
    QCOMPARE(device->GetParams()->GetInt("Width")->SetValue(640), OrbCamErrNoDevice);

    // It comes back (powered up again at the same address): event 1003, and
    // its features answer again.
    QCOMPARE(device->RegisterEventCallback(OrbCam::EventDeviceReturned, onEvent, &event), OrbCamOk);
    QVERIFY(startFake(QStringLiteral("127.0.0.3"), QStringLiteral("ORB-B")));
    QTRY_COMPARE_WITH_TIMEOUT(event.load(), uint32_t(OrbCam::EventDeviceReturned), 3000);
    QVERIFY(device->IsConnected());
    OrbGenParam::String *userId = device->GetParams()->GetString("DeviceUserID");
    QVERIFY(userId);
    QCOMPARE(userId->SetValue("Back"), OrbCamOk);
    QCOMPARE(rawMemory("127.0.0.3", 0x8010, 5), QByteArray("Back\0", 5));

    // Lost for good; a read finds it out first, and fails within the answer
    // time instead of Aravis's 2.5 s.
    m_fakes.back()->kill();
    m_fakes.back()->waitForFinished(3000);
    QCOMPARE(OrbCam_SetAnswerTimeout(150, 2), OrbCamOk);
    device->GetParams()->GetNodeMap()->InvalidateNodes();
    QElapsedTimer reading;
    reading.start();
    device->GetParams()->GetString("DeviceUserID")->GetValue(&err);
    QCOMPARE(err, OrbCamErrNoDevice);
    QVERIFY2(reading.elapsed() < 1500, qPrintable(QString::number(reading.elapsed())));
    QTRY_COMPARE_WITH_TIMEOUT(event.load(), uint32_t(OrbCam::EventDeviceLost), 3000);
    QCOMPARE(OrbCam_SetAnswerTimeout(400, 2), OrbCamOk);
    opened.release();
    // Gone from the next discovery; its DeviceInfo stays and says so.
    const std::vector<OrbCam::DeviceInfo *> left = ref.cameras();
    QCOMPARE(left.size(), size_t(1));
    QCOMPARE(cameraB->GetAccessStatus(), uint32_t(OrbCam::AccessNone));
}

void tst_OrbCamAravis::forceIpReachesTheCamera()
{
    // The fake cameras hold the GVCP port on their addresses: only our peer
    // answers from here on.
    for (auto &fake : m_fakes) {
        fake->kill();
        fake->waitForFinished(3000);
    }
    GvcpPeer peer(0x7F000009, 0x0A1B2C3D4E5Full);
    QVERIFY(peer.bound());
    SystemRef ref;
    std::vector<OrbCam::DeviceInfo *> cameras = ref.cameras();
    QCOMPARE(cameras.size(), size_t(1));
    OrbCam::DeviceInfo *camera = cameras.front();
    QCOMPARE(QByteArray(camera->GetSerialNumber()), QByteArray("PEER01"));
    QCOMPARE(camera->ForceIP(0, 0xFF000000, 0), OrbCamErrInvalidArgument);
    QCOMPARE(camera->ForceIP(0x7F000042, 0xFF00FF00, 0), OrbCamErrInvalidArgument);
    QCOMPARE(camera->ForceIP(0x7F000042, 0xFFFF0000, 0x7F000001), OrbCamOk);

    const QByteArray sent = peer.forceIp();
    QCOMPARE(sent.size(), 64);
    QByteArray expected(64, '\0');
    const uint8_t header[] = { 0x42, 0x01, 0x00, 0x04, 0x00, 0x38 };
    for (int i = 0; i < 6; ++i)
        expected[i] = static_cast<char>(header[i]);
    expected[6] = sent[6]; // the request id, whatever it is, but not 0
    expected[7] = sent[7];
    QVERIFY(sent[6] != 0 || sent[7] != 0);
    const uint8_t mac[] = { 0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F };
    for (int i = 0; i < 6; ++i)
        expected[8 + 2 + i] = static_cast<char>(mac[i]);
    const uint8_t ip[] = { 127, 0, 0, 0x42 }, mask[] = { 255, 255, 0, 0 }, gw[] = { 127, 0, 0, 1 };
    for (int i = 0; i < 4; ++i) {
        expected[8 + 20 + i] = static_cast<char>(ip[i]);
        expected[8 + 36 + i] = static_cast<char>(mask[i]);
        expected[8 + 52 + i] = static_cast<char>(gw[i]);
    }
    QCOMPARE(sent.toHex(), expected.toHex());
}

// The camera's answer is reported: a refusal, and silence.
void tst_OrbCamAravis::forceIpReportsTheAnswer()
{
    SystemRef ref;
    OrbCam::DeviceInfo *camera = nullptr;
    {
        GvcpPeer refusing(0x7F000009, 0x0A1B2C3D4E5Full, 0x8006);
        QVERIFY(refusing.bound());
        const std::vector<OrbCam::DeviceInfo *> cameras = ref.cameras();
        QCOMPARE(cameras.size(), size_t(1));
        camera = cameras.front();
        QCOMPARE(camera->ForceIP(0x7F000042, 0xFFFF0000, 0), OrbCamErrInvalidState);
        QVERIFY(!refusing.forceIp().isEmpty());
    }
    QCOMPARE(camera->ForceIP(0x7F000042, 0xFFFF0000, 0), OrbCamErrNoDevice);
}

QTEST_MAIN(tst_OrbCamAravis)
#include "tst_orbcam_aravis.moc"
