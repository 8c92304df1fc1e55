#include "guihandoff.h"

#include <QThread>

namespace OrbGui {

GuiHandOff::GuiHandOff(QObject *context)
    : m_context(context)
    , m_generation(std::make_shared<std::atomic<quint64>>(0))
{
}

GuiHandOff::~GuiHandOff()
{
    invalidate();
}

void GuiHandOff::post(std::function<void()> call)
{
    if (QThread::currentThread() == m_context->thread()) {
        call();
        return;
    }
    const quint64 generation = m_generation->load();
    QMetaObject::invokeMethod(
        m_context,
        // The counter is shared, not owned by this object: the call may run
        // after this object is gone, and then finds the counter moved on.
        [counter = m_generation, generation, call = std::move(call)] {
            if (counter->load() == generation)
                call();
        },
        Qt::QueuedConnection);
}

void GuiHandOff::invalidate()
{
    ++*m_generation;
}

} // namespace OrbGui
