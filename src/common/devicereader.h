// Reads a camera's features for the windows off the GUI thread: a camera
// that stops answering keeps this thread waiting, never a host's GUI thread.
// One reader (one thread) per node map, that is per open device, shared by
// every window of ours that shows it (the tree view knows only the node
// map); what it reads goes back through the window's GuiHandOff.
//
// Jobs are queued per owner (a window): a new job replaces the owner's job
// still waiting, so a slow camera never piles up a backlog of refreshes.
#ifndef ORBGUI_DEVICEREADER_H
#define ORBGUI_DEVICEREADER_H

#include <GenApi/GenApi.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace OrbGui {

class DeviceReader {
public:
    // The node map's reader, made on first use. GUI thread.
    static std::shared_ptr<DeviceReader> of(const GenApi::INodeMap *nodeMap);
    // Joins the thread; every owner has cancelled by then.
    ~DeviceReader();
    DeviceReader(const DeviceReader &) = delete;
    DeviceReader &operator=(const DeviceReader &) = delete;

    // Runs `job` on the reader's thread. Any thread.
    void post(const void *owner, std::function<void()> job);
    // Drops the owner's waiting job and waits for its job under way: at most
    // one read, of a camera that answers or the answer time of one that
    // stopped (OrbCam_SetAnswerTimeout); after that the camera fails at once.
    // Before the owner, or the device, goes. Any thread but the reader's.
    void cancel(const void *owner);

private:
    DeviceReader();
    void run();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_done;
    std::deque<std::pair<const void *, std::function<void()>>> m_jobs;
    const void *m_running = nullptr; // the owner whose job runs now
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace OrbGui

#endif
