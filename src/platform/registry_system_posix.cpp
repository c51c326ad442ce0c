// This system has no registry: two databases stand in for it.
#include "platform/registry_system.h"

#include <mutex>
#include <string>

#include "platform/file_names.h"
#include "platform/registry_calls.h"
#include "platform/registry_database.h"

namespace QMT {

namespace {

// What the system's registry is made from. Never destroyed, as that registry.
struct Choice {
    std::mutex mutex;
    std::string userFile = platform::DefaultUserDatabase();
    std::string machineFile = platform::DefaultMachineDatabase();
    Registry* registry = nullptr;
};

Choice& TheChoice() {
    static Choice& choice = *new Choice;
    return choice;
}

std::unique_ptr<Registry> MakeRegistry(std::string userFile, std::string machineFile) {
    using platform::DatabaseStore;
    using platform::Readers;
    return std::make_unique<platform::StoredRegistry>(
        std::make_unique<DatabaseStore>(std::move(userFile), Readers::Owner),
        std::make_unique<DatabaseStore>(std::move(machineFile), Readers::Everyone));
}

} // namespace

Registry& platform::SystemRegistry() {
    Choice& choice = TheChoice();
    std::scoped_lock const lock(choice.mutex);
    if (!choice.registry) {
        choice.registry = MakeRegistry(choice.userFile, choice.machineFile).release();
    }
    return *choice.registry;
}

bool SetRegistryFiles(CodeUnit const* userFile, CodeUnit const* machineFile) {
    Choice& choice = TheChoice();
    std::scoped_lock const lock(choice.mutex);
    if (choice.registry) {
        return false;
    }
    choice.userFile = platform::ToFileName(userFile);
    choice.machineFile = platform::ToFileName(machineFile);
    return true;
}

std::unique_ptr<Registry> MakeDatabaseRegistry(CodeUnit const* userFile, CodeUnit const* machineFile) {
    return MakeRegistry(platform::ToFileName(userFile), platform::ToFileName(machineFile));
}

} // namespace QMT
