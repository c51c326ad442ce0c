#include "qmt/config/file_tree_config.h"

#include <utility>

#include "config/file_tree_config_imp.h"

namespace QMT {

FileTreeConfig::FileTreeConfig(String path)
    : SettingsStore(std::make_unique<FileTreeConfigImp>(std::move(path))) {}

FileTreeConfig::~FileTreeConfig() = default;

} // namespace QMT
