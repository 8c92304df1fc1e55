// Several backends behind one System: the simulated cameras beside the real
// ones, as the host chooses (OrbCam_SetBackends).
#include "backend.h"
#include "interfacefeatures.h"

namespace OrbCamImpl {

namespace {

class CombinedSystem final : public Backend {
public:
    explicit CombinedSystem(std::vector<std::unique_ptr<Backend>> parts)
        : m_parts(std::move(parts))
    {
    }

    OrbCam::InterfaceList *GetInterfaces(uint32_t typeMask) override
    {
        std::vector<OrbCam::Interface *> all;
        for (const auto &part : m_parts) {
            OrbCam::InterfaceList *list = part->GetInterfaces(typeMask);
            for (OrbCam::Interface *i = list->First(); i; i = list->Next())
                all.push_back(i);
        }
        return m_lists.select(all, OrbCam::AllInterfaces);
    }

    std::unique_ptr<PendingOpen> prepareOpen(OrbCam::DeviceInfo *info, uint32_t access,
                                             OrbCamErr &err) override
    {
        // A backend answers InvalidArgument for a camera that is not its own.
        err = OrbCamErrInvalidArgument;
        for (const auto &part : m_parts) {
            std::unique_ptr<PendingOpen> pending = part->prepareOpen(info, access, err);
            if (pending || err != OrbCamErrInvalidArgument)
                return pending;
        }
        return nullptr;
    }

    bool closeDevice(OrbCam::Device *device) override
    {
        for (const auto &part : m_parts)
            if (part->closeDevice(device))
                return true;
        return false;
    }

    std::vector<Backend *> parts() override
    {
        std::vector<Backend *> all;
        for (const auto &part : m_parts)
            all.push_back(part.get());
        return all;
    }

private:
    std::vector<std::unique_ptr<Backend>> m_parts;
    InterfaceLists m_lists;
};

} // namespace

std::unique_ptr<Backend> combineBackends(std::vector<std::unique_ptr<Backend>> parts)
{
    if (parts.size() == 1)
        return std::move(parts.front());
    return std::make_unique<CombinedSystem>(std::move(parts));
}

} // namespace OrbCamImpl
