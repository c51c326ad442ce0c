#include "qmt/config/app_config.h"

#include <utility>

#include "config/app_config_imp.h"

namespace QMT {

AppConfig::AppConfig(String first, String second, String third, bool machineWide)
    : SettingsStore(std::make_unique<AppConfigImp>(std::move(first), std::move(second), std::move(third),
                                                   machineWide)) {}

AppConfig::~AppConfig() = default;

} // namespace QMT
