// The open devices of a backend and the one thread that delivers their
// events (the camera's loss and return) to the callbacks the host
// registered: what every backend shares. Internal.
//
// An event is posted for a source (the simulated camera, the real device)
// and delivered to every attached device of that source, on the event
// thread, never on the thread that posted it: a callback may release
// devices or call back into the API. The thread starts with the first
// device attached, that is once a device is fully built, and ends with this
// object. With an idle task, the thread runs it on the attached devices
// whenever no event came for its period (the real cameras look for a lost
// camera's return so).
#ifndef ORBCAM_OPENDEVICES_H
#define ORBCAM_OPENDEVICES_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace OrbCamImpl {

class EventTarget {
public:
    // What events for this device are posted for.
    virtual const void *eventSource() const = 0;
    // On the event thread: hands the event to the device's callbacks.
    virtual void deliver(uint32_t event) = 0;

protected:
    ~EventTarget() = default;
};

class OpenDevices {
public:
    using Idle = std::function<void(EventTarget *)>;

    OpenDevices() = default;
    OpenDevices(Idle idle, std::chrono::milliseconds every);
    // Stops the event thread; events not yet delivered are dropped.
    ~OpenDevices();
    OpenDevices(const OpenDevices &) = delete;
    OpenDevices &operator=(const OpenDevices &) = delete;

    // At the end of the device's construction.
    void attach(EventTarget *device);
    // At the start of the device's destruction: waits for a delivery to it
    // under way (unless called from that delivery) and drops its events.
    void detach(EventTarget *device);
    // The devices attached now.
    std::vector<EventTarget *> attached();
    // Any thread; never blocks on a delivery.
    void post(const void *source, uint32_t event);

private:
    void run();
    bool isAttached(EventTarget *device) const;

    Idle m_idle;
    std::chrono::milliseconds m_every { 0 };

    // Held while delivering: detach waits for it. Recursive, as a callback
    // may release a device, which detaches it.
    std::recursive_mutex m_devicesMutex;
    std::vector<EventTarget *> m_devices;

    std::mutex m_queueMutex;
    std::condition_variable m_queueCondition;
    std::deque<std::pair<const void *, uint32_t>> m_queue;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace OrbCamImpl

#endif
