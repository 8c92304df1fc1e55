// OrbGenParam::Array over a GenApi node map. Internal.
#ifndef ORBCAM_PARAMARRAY_H
#define ORBCAM_PARAMARRAY_H

#include <OrbCam/OrbGenParam.h>

#include <GenApi/GenApi.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace OrbCamImpl {

OrbCamErr errorFor(const GenICam::GenericException &e);

class ParamArray final : public OrbGenParam::Array {
public:
    // alive tells whether the camera answers; while it does not, every
    // operation fails with OrbCamErrNoDevice. The node map is not owned.
    ParamArray(GenApi::INodeMap *map, std::function<bool()> alive);
    ~ParamArray() override;
    ParamArray(const ParamArray &) = delete;
    ParamArray &operator=(const ParamArray &) = delete;

    GenApi::INodeMap *GetNodeMap(int index = 0) override;
    OrbGenParam::Param *GetParam(const char *name) override;
    OrbGenParam::Int *GetInt(const char *name) override;
    OrbGenParam::Float *GetFloat(const char *name) override;
    OrbGenParam::Enum *GetEnum(const char *name) override;
    OrbGenParam::Boolean *GetBoolean(const char *name) override;
    OrbGenParam::Command *GetCommand(const char *name) override;
    OrbGenParam::String *GetString(const char *name) override;

    bool alive() const { return !m_alive || m_alive(); }

private:
    GenApi::INodeMap *m_map;
    std::function<bool()> m_alive;
    std::mutex m_mutex;
    // The parameters' destructors are not public; they are deleted through
    // an internal base of their own.
    struct Owned {
        virtual ~Owned() = default;
    };
    std::map<std::string, std::pair<std::unique_ptr<Owned>, OrbGenParam::Param *>> m_params;

    template <class Base> friend class ParamCommon;
};

} // namespace OrbCamImpl

#endif
