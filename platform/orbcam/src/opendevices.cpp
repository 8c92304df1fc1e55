#include "opendevices.h"

#include <algorithm>

namespace OrbCamImpl {

OpenDevices::OpenDevices(Idle idle, std::chrono::milliseconds every)
    : m_idle(std::move(idle))
    , m_every(every)
{
}

OpenDevices::~OpenDevices()
{
    {
        std::lock_guard<std::mutex> lock(m_queueMutex);
        m_stopping = true;
    }
    m_queueCondition.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void OpenDevices::attach(EventTarget *device)
{
    std::lock_guard<std::recursive_mutex> lock(m_devicesMutex);
    m_devices.push_back(device);
    std::lock_guard<std::mutex> queue(m_queueMutex);
    if (!m_thread.joinable() && !m_stopping)
        m_thread = std::thread(&OpenDevices::run, this);
}

void OpenDevices::detach(EventTarget *device)
{
    std::lock_guard<std::recursive_mutex> lock(m_devicesMutex);
    m_devices.erase(std::remove(m_devices.begin(), m_devices.end(), device), m_devices.end());
    // A source no device has any more may come again at the same address
    // (a device built where a released one was): its old events go.
    const void *source = device->eventSource();
    const bool shared = std::any_of(m_devices.begin(), m_devices.end(), [source](EventTarget *d) {
        return d->eventSource() == source;
    });
    if (shared)
        return;
    std::lock_guard<std::mutex> queue(m_queueMutex);
    m_queue.erase(std::remove_if(m_queue.begin(), m_queue.end(),
                                 [source](const auto &item) { return item.first == source; }),
                  m_queue.end());
}

std::vector<EventTarget *> OpenDevices::attached()
{
    std::lock_guard<std::recursive_mutex> lock(m_devicesMutex);
    return m_devices;
}

void OpenDevices::post(const void *source, uint32_t event)
{
    {
        std::lock_guard<std::mutex> lock(m_queueMutex);
        m_queue.emplace_back(source, event);
    }
    m_queueCondition.notify_all();
}

bool OpenDevices::isAttached(EventTarget *device) const
{
    return std::find(m_devices.begin(), m_devices.end(), device) != m_devices.end();
}

void OpenDevices::run()
{
    for (;;) {
        std::pair<const void *, uint32_t> item { nullptr, 0 };
        {
            std::unique_lock<std::mutex> lock(m_queueMutex);
            const auto ready = [this] { return m_stopping || !m_queue.empty(); };
            if (m_idle)
                m_queueCondition.wait_for(lock, m_every, ready);
            else
                m_queueCondition.wait(lock, ready);
            if (m_stopping)
                return;
            if (!m_queue.empty()) {
                item = m_queue.front();
                m_queue.pop_front();
            }
        }
        std::lock_guard<std::recursive_mutex> lock(m_devicesMutex);
        // A callback may release devices: each is looked for again before
        // it gets its turn.
        const std::vector<EventTarget *> devices = m_devices;
        for (EventTarget *device : devices) {
            if (!isAttached(device))
                continue;
            if (item.first) {
                if (device->eventSource() == item.first)
                    device->deliver(item.second);
            } else if (m_idle) {
                m_idle(device);
            }
        }
    }
}

} // namespace OrbCamImpl
