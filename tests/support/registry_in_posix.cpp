// The registry that stands in for the system's, in databases of the test's directory.
#include "support/registry_fixtures.h"

namespace QMT {

bool const systemHasRegistry = false;
std::uint32_t const fileIsThere = EEXIST;
std::uint32_t const noSuchDirectory = ENOTDIR;

TestRegistry RegistryIn(TempDirectory const& directory) {
    return MakeDatabaseRegistry(directory.Path(u"user.db"), directory.Path(u"machine.db"));
}

} // namespace QMT
