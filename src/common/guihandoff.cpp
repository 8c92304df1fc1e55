#include "guihandoff.h"

#include <QPointer>
#include <QThread>

#include <atomic>
#include <deque>
#include <mutex>

namespace OrbGui {

// The calls travel through a queue of our own under a mutex, and Qt's event
// only says "drain" (it carries nothing of ours): what a call carries is
// handed over under a lock that every thread, and ThreadSanitizer, can see.
class GuiHandOffDrain : public QObject {
    Q_OBJECT

public:
    explicit GuiHandOffDrain(QObject *context) { moveToThread(context->thread()); }

    std::mutex mutex;
    std::deque<std::pair<quint64, std::function<void()>>> calls;
    std::atomic<quint64> generation { 0 };

public Q_SLOTS:
    void drain()
    {
        std::deque<std::pair<quint64, std::function<void()>>> taken;
        {
            std::lock_guard<std::mutex> lock(mutex);
            taken.swap(calls);
        }
        // A call may end the hand-off (its owner goes): then the rest goes too.
        const QPointer<GuiHandOffDrain> alive(this);
        for (auto &[posted, call] : taken) {
            if (!alive)
                return;
            if (posted == generation.load())
                call();
        }
    }
};

GuiHandOff::GuiHandOff(QObject *context)
    : m_context(context)
    , m_drain(new GuiHandOffDrain(context))
{
}

// Drains still on their way are removed with the object they are sent to.
GuiHandOff::~GuiHandOff() = default;

void GuiHandOff::post(std::function<void()> call)
{
    if (QThread::currentThread() == m_context->thread()) {
        call();
        return;
    }
    bool first = false;
    {
        std::lock_guard<std::mutex> lock(m_drain->mutex);
        first = m_drain->calls.empty();
        m_drain->calls.emplace_back(m_drain->generation.load(), std::move(call));
    }
    // One drain on its way takes every call queued until it runs.
    if (first)
        QMetaObject::invokeMethod(m_drain.get(), "drain", Qt::QueuedConnection);
}

void GuiHandOff::invalidate()
{
    ++m_drain->generation;
}

} // namespace OrbGui

#include "guihandoff.moc"
