#include "camerasearch.h"

#include <chrono>

namespace OrbGui {

CameraSearch &CameraSearch::instance()
{
    // Made on first use, after the camera system the host already holds:
    // destroyed before it at exit.
    static CameraSearch search;
    return search;
}

CameraSearch::~CameraSearch()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_subscribers.clear();
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
    if (m_system)
        OrbCam_ReleaseSystem(m_system);
}

int CameraSearch::subscribe(OrbCam::System *system, Listener listener)
{
    if (!system)
        return 0;
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_system) {
        // The host holds the system while its selector is open: this
        // returns that one, with a reference of our own.
        OrbCam::System *ours = OrbCam_GetSystem();
        if (ours != system) {
            lock.unlock();
            if (ours)
                OrbCam_ReleaseSystem(ours);
            return 0;
        }
        m_system = ours;
    }
    const int ticket = m_nextTicket++;
    m_subscribers.push_back({ ticket, std::move(listener), false });
    m_passWanted = true;
    if (!m_threadRunning) {
        // The last thread ended (or never was): it is joined at once.
        if (m_thread.joinable())
            m_thread.join();
        m_threadRunning = true;
        m_thread = std::thread(&CameraSearch::run, this);
    }
    lock.unlock();
    m_wake.notify_all();
    return ticket;
}

void CameraSearch::unsubscribe(int ticket)
{
    OrbCam::System *release = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto it = m_subscribers.begin(); it != m_subscribers.end(); ++it)
            if (it->ticket == ticket) {
                m_subscribers.erase(it);
                break;
            }
        // With no pass under way the reference goes now, so that the host's
        // release of its own frees the system as it expects.
        if (m_subscribers.empty() && !m_passRunning) {
            release = m_system;
            m_system = nullptr;
        }
    }
    m_wake.notify_all();
    if (release)
        OrbCam_ReleaseSystem(release);
}

void CameraSearch::rescan()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_passWanted = true;
    }
    m_wake.notify_all();
}

void CameraSearch::setPolling(int ticket, bool poll)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (Subscriber &s : m_subscribers)
            if (s.ticket == ticket)
                s.polling = poll;
    }
    m_wake.notify_all();
}

bool CameraSearch::anyPolling() const
{
    for (const Subscriber &s : m_subscribers)
        if (s.polling)
            return true;
    return false;
}

void CameraSearch::run()
{
    auto lastPass = std::chrono::steady_clock::now();
    for (;;) {
        OrbCam::System *system = nullptr;
        bool shown = false;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            for (;;) {
                if (m_stopping || m_subscribers.empty()) {
                    // Ends; the reference goes with it when unsubscribe
                    // could not drop it (a pass was running).
                    OrbCam::System *release = m_subscribers.empty() ? m_system : nullptr;
                    if (release)
                        m_system = nullptr;
                    m_threadRunning = false;
                    lock.unlock();
                    if (release)
                        OrbCam_ReleaseSystem(release);
                    return;
                }
                const auto due = lastPass + std::chrono::seconds(1);
                if (m_passWanted || (anyPolling() && std::chrono::steady_clock::now() >= due))
                    break;
                if (anyPolling())
                    m_wake.wait_until(lock, due);
                else
                    m_wake.wait(lock);
            }
            shown = m_passWanted;
            m_passWanted = false;
            m_passRunning = true;
            system = m_system;
            for (const Subscriber &s : m_subscribers)
                s.listener.searching(true, shown);
        }
        pass(system);
        lastPass = std::chrono::steady_clock::now();
        std::lock_guard<std::mutex> lock(m_mutex);
        m_passRunning = false;
        for (const Subscriber &s : m_subscribers)
            s.listener.searching(false, shown);
    }
}

void CameraSearch::pass(OrbCam::System *system)
{
    std::vector<OrbCam::Interface *> interfaces;
    if (OrbCam::InterfaceList *list = system->GetInterfaces(OrbCam::AllInterfaces))
        for (OrbCam::Interface *i = list->First(); i; i = list->Next())
            interfaces.push_back(i);
    std::vector<std::thread> asking;
    asking.reserve(interfaces.size());
    for (OrbCam::Interface *i : interfaces)
        asking.emplace_back([this, i] {
            bool changed = false;
            i->UpdateDeviceList(&changed, InterfaceTimeoutMs);
            std::lock_guard<std::mutex> lock(m_mutex);
            for (const Subscriber &s : m_subscribers)
                s.listener.answered();
        });
    for (std::thread &t : asking)
        t.join();
}

} // namespace OrbGui
