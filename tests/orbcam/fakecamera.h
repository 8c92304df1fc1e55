// A private network with Aravis's fake GigE Vision cameras in it, for the
// tests and benchmarks of real cameras: this process moves to a network
// namespace of its own (nothing it sends leaves the machine; GigE Vision
// discovery broadcasts), and the fake cameras serve our simulated camera's
// description.
#ifndef ORB_TESTS_FAKECAMERA_H
#define ORB_TESTS_FAKECAMERA_H

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>

namespace FakeCamera {

constexpr const char *Program = "arv-fake-gv-camera-0.8";

inline bool writeFile(const char *path, const std::string &text)
{
    const int fd = open(path, O_WRONLY);
    if (fd < 0)
        return false;
    const bool ok = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(fd);
    return ok;
}

inline bool run(const QString &program, const QStringList &arguments, QString &why)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(5000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        why = program + QLatin1Char(' ') + arguments.join(QLatin1Char(' ')) + QStringLiteral(": ")
            + QString::fromLocal8Bit(process.readAllStandardError()).trimmed()
            + process.errorString();
        return false;
    }
    return true;
}

// This process (and what it starts) moves to a network namespace of its
// own with loopback up and the given extra loopback addresses.
inline bool enterNamespace(const QStringList &addresses, QString &why)
{
    if (unshare(CLONE_NEWNET) != 0) {
        const int denied = errno;
        // Without the right to make one, a user namespace may give it.
        const uid_t uid = getuid();
        const gid_t gid = getgid();
        if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
            why = QStringLiteral("cannot create a network namespace: %1")
                      .arg(QString::fromLocal8Bit(std::strerror(denied)));
            return false;
        }
        writeFile("/proc/self/setgroups", "deny");
        if (!writeFile("/proc/self/uid_map", "0 " + std::to_string(uid) + " 1")
            || !writeFile("/proc/self/gid_map", "0 " + std::to_string(gid) + " 1")) {
            why = QStringLiteral("cannot map the user into the new namespace");
            return false;
        }
    }
    if (!run(QStringLiteral("ip"),
             { QStringLiteral("link"), QStringLiteral("set"), QStringLiteral("lo"),
               QStringLiteral("up") },
             why))
        return false;
    for (const QString &address : addresses)
        if (!run(QStringLiteral("ip"),
                 { QStringLiteral("addr"), QStringLiteral("add"), address + QStringLiteral("/8"),
                   QStringLiteral("dev"), QStringLiteral("lo") },
                 why))
            return false;
    return true;
}

// Our simulated camera's description for the fake camera, which has 64 KiB
// of register memory with its own registers low: every register moves into
// a free part of it (0x10000.. to 0x8000.., 0x20000.. to 0x9000..).
inline std::string fakeCameraModel()
{
    QFile file(QStringLiteral(ORB_CAMERAS_DIR "/orbsim-c2000.xml"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString xml = QString::fromUtf8(file.readAll());
    static const QRegularExpression address(
        QStringLiteral("<Address>0x([12])([0-9A-Fa-f]{4})</Address>"));
    QString moved;
    int last = 0;
    for (auto it = address.globalMatch(xml); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        moved += xml.midRef(last, m.capturedStart() - last);
        const uint32_t base = m.captured(1) == QLatin1String("1") ? 0x8000 : 0x9000;
        moved += QStringLiteral("<Address>0x%1</Address>")
                     .arg(base + m.captured(2).toUInt(nullptr, 16), 4, 16, QLatin1Char('0'));
        last = m.capturedEnd();
    }
    moved += xml.midRef(last);
    return moved.toStdString();
}

} // namespace FakeCamera

#endif
