// Camera discovery for the camera selectors, never on the GUI thread: one
// search thread for the process, whatever the number of selectors open. A
// pass asks every interface of the system at the same time (a thread per
// interface for the pass), so a host with four network cards waits for one
// discovery, not four in a row.
//
// Subscribers are told, on the search thread, when a pass starts and ends
// and each time an interface has answered; they hand that to their own
// thread (GuiHandOff). Unsubscribing returns at once and no call for that
// subscriber follows; a pass under way ends on the search thread, which ends
// when no one is subscribed. The search holds its own reference to the
// system while it may use it, so that a host releasing its own reference
// after closing a selector never pulls the system from under a pass.
#ifndef ORBGUI_CAMERASEARCH_H
#define ORBGUI_CAMERASEARCH_H

#include <OrbCam/OrbCam.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace OrbGui {

class CameraSearch {
public:
    // Search thread. `shown`: the pass was asked for (a selector opened, a
    // Rescan) rather than polling's, and deserves a visible sign.
    struct Listener {
        std::function<void(bool running, bool shown)> searching;
        std::function<void()> answered; // an interface's list is fresh
    };

    static CameraSearch &instance();
    ~CameraSearch();
    CameraSearch(const CameraSearch &) = delete;
    CameraSearch &operator=(const CameraSearch &) = delete;

    // Any thread. Starts a shown pass. 0 when there is no system to search.
    int subscribe(OrbCam::System *system, Listener listener);
    void unsubscribe(int ticket);
    // A shown pass as soon as the one under way has ended.
    void rescan();
    // While any subscriber polls, a pass a second.
    void setPolling(int ticket, bool poll);

    // How long each interface is asked for cameras in a pass.
    static constexpr uint32_t InterfaceTimeoutMs = 300;

private:
    CameraSearch() = default;
    void run();
    void pass(OrbCam::System *system);
    bool anyPolling() const;

    struct Subscriber {
        int ticket;
        Listener listener;
        bool polling;
    };

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Subscriber> m_subscribers;
    int m_nextTicket = 1;
    // Our reference, held while anyone is subscribed or a pass runs.
    OrbCam::System *m_system = nullptr;
    bool m_passWanted = false;
    bool m_passRunning = false;
    bool m_threadRunning = false;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace OrbGui

#endif
