#include "devicereader.h"

#include <algorithm>
#include <map>

namespace OrbGui {

std::shared_ptr<DeviceReader> DeviceReader::of(const GenApi::INodeMap *nodeMap)
{
    // A released node map's address may come back for another: a reader no
    // window holds any more has expired and is made anew.
    static std::mutex registryMutex;
    static std::map<const GenApi::INodeMap *, std::weak_ptr<DeviceReader>> registry;
    std::lock_guard<std::mutex> lock(registryMutex);
    for (auto it = registry.begin(); it != registry.end();)
        it = it->second.expired() ? registry.erase(it) : std::next(it);
    std::shared_ptr<DeviceReader> reader = registry[nodeMap].lock();
    if (!reader) {
        reader.reset(new DeviceReader);
        registry[nodeMap] = reader;
    }
    return reader;
}

DeviceReader::DeviceReader()
    : m_thread(&DeviceReader::run, this)
{
}

DeviceReader::~DeviceReader()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_jobs.clear();
    }
    m_wake.notify_all();
    m_thread.join();
}

void DeviceReader::post(const void *owner, std::function<void()> job)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_jobs.erase(
            std::remove_if(m_jobs.begin(), m_jobs.end(),
                           [owner](const auto &waiting) { return waiting.first == owner; }),
            m_jobs.end());
        m_jobs.emplace_back(owner, std::move(job));
    }
    m_wake.notify_all();
}

void DeviceReader::cancel(const void *owner)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_jobs.erase(std::remove_if(m_jobs.begin(), m_jobs.end(),
                                [owner](const auto &waiting) { return waiting.first == owner; }),
                 m_jobs.end());
    m_done.wait(lock, [this, owner] { return m_running != owner; });
}

void DeviceReader::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
        if (m_stopping)
            return;
        auto [owner, job] = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_running = owner;
        lock.unlock();
        job();
        job = nullptr; // what it holds goes before the owner may
        lock.lock();
        m_running = nullptr;
        m_done.notify_all();
    }
}

} // namespace OrbGui
