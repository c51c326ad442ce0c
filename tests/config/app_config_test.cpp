#include "qmt/config/app_config.h"

#include "platform/registry_counting.h"
#include "qmt/config/file_tree_config.h"
#include "qmt/config/settings_copy.h"
#include "qmt/helpers/system.h"
#include "support/registry_fixtures.h"

namespace QMT {
namespace {

String const place = u"HKEY_CURRENT_USER\\Software\\M\\P\\S";

struct AppConfigTest : testing::Test {
    // What is stored below Software, "error 2" for no entry, "no section".
    std::string Stored(String section, String entry) {
        bool const isThere = calls.Open(user, u"Software\\" + section, KEY_READ) == 0;
        std::string bytes = isThere ? calls.Query(calls.key, entry) : "no section";
        std::erase(bytes, '\0');
        return bytes;
    }

    TempDirectory directory;
    TestRegistry inner = RegistryIn(directory);
    CountingRegistry registry{*inner};
    std::shared_ptr<Registry> const former = PutInUse(registry);
    RegistryCalls calls{*inner};
};

TEST_F(AppConfigTest, FirstAndSecondNameOneKeyBelowSoftware) {
    Texts const cases[] = {{u"M", u"P", u"M\\P"},
                           {u"M\\", u"P", u"M\\P"},
                           {u"", u"P\\Q", u"P\\Q"},
                           {u"M\\N", u"P\\Q", u"M\\N\\P\\Q"},
                           {u"M", u"", u"M"}};
    for (Texts const& names : cases)
        for (bool const machineWide : {false, true}) {
            AppConfig settings(names[0], names[1], u"ignored", machineWide);
            void* const root = machineWide ? machine : user;
            ASSERT_EQ(calls.Open(root, u"Software\\" + names[2]), 0U);
            EXPECT_EQ((Texts{TakeError(settings.CheckExists(false)),
                             TakeError(settings.WriteProfileStr(u"S", u"e", names[2]))}),
                      Texts(2));
            EXPECT_EQ(calls.Open(calls.key, u"S"), 0U);
            EXPECT_EQ(calls.Query(calls.key, u"e").size(), 2 * names[2].Len() + 2);
        }
}

TEST_F(AppConfigTest, ReadsStoreTheDefaultsTheyGave) {
    AppConfig settings(u"M", u"P", u"", false);
    String const complaint = u"Couldn't open reg key: " + place;
    EXPECT_EQ(settings.GetString(u"S", u"e", u"early"), u"early"); // nothing is open yet
    EXPECT_EQ(TakeError(settings.WriteProfileStr(u"S", u"e", u"v")),
              complaint + u": " + GetSystemErrMsge(platform::noOpenKey));
    ASSERT_EQ(TakeError(settings.CheckExists(false)), u"");
    EXPECT_EQ(settings.GetReadOnlyString(u"S", u"e"), u"");
    EXPECT_EQ(Stored(u"M\\P\\S", u"e"), "no section");
    EXPECT_EQ(settings.GetString(u"S", u"e", u"") + settings.GetReadOnlyString(u"S", u"f"), u"");
    EXPECT_EQ(Stored(u"M\\P\\S", u"e") + Stored(u"M\\P\\S", u"f"),
              "error 2"); // the empty default counts, too
    EXPECT_EQ(settings.GetString(u"S", u"e", u"first"), u"first");
    EXPECT_EQ(Stored(u"M\\P\\S", u"e"), "first");
    EXPECT_EQ(settings.GetString(u"S", u"e", u"second") + settings.GetReadOnlyString(u"S", u"e"),
              u"firstfirst");
    int value = 0; // a default that is not allowed is stored first, and found there by the next read
    EXPECT_NE(TakeError(settings.TestProfileNumber(u"S", u"n", value, 1, 8, u"9")), u"");
    EXPECT_NE(TakeError(settings.TestProfileNumber(u"S", u"n", value, 1, 8, u"2")), u"");
    EXPECT_EQ(value, 9);
    registry.Before(RegistryCall::SetValue, [] { return 28U; });
    EXPECT_EQ(settings.GetString(u"S", u"g", u"kept"), u"kept");
    EXPECT_EQ(TakeError(settings.WriteProfileStr(u"S", u"g", u"v")),
              complaint + u"\\g: " + GetSystemErrMsge(28));
}

TEST_F(AppConfigTest, WhoMayOnlyReadGetsWhatIsThere) {
    registry.Before(RegistryCall::CreateKey, [] { return platform::accessRefused; });
    AppConfig reading(u"M", u"P", u"", false);
    EXPECT_EQ(TakeError(reading.CheckExists(true)),
              u"Couldn't open HKEY_CURRENT_USER\\Software\\M: " + GetSystemErrMsge(platform::nothingThere));
    ASSERT_EQ((Results{calls.Create(user, u"Software\\M\\P\\S"), calls.Set(calls.key, u"e", {"v\0", 2})}),
              Results(2, 0));
    EXPECT_EQ(TakeError(reading.CheckExists(true)), u"");
    EXPECT_EQ(reading.GetReadOnlyString(u"S", u"e") + reading.GetString(u"S", u"e", u"default"), u"vdefault");
    EXPECT_EQ(TakeError(reading.WriteProfileStr(u"S", u"e", u"w")),
              u"Couldn't open reg key: " + place + u": " + GetSystemErrMsge(platform::accessRefused));
}

TEST_F(AppConfigTest, ListsDeletesAndCopies) {
    AppConfig settings(u"M", u"P", u"", false);
    Names names;
    EXPECT_NE(TakeError(settings.EnumSections(names)), u"");
    ASSERT_EQ(TakeError(settings.CheckExists(false)), u"");
    for (char16_t const* const section : {u"T", u"s", u"S"})
        for (char16_t const* const entry : {u"A", u"b"})
            ASSERT_EQ(TakeError(settings.WriteProfileStr(section, entry, String(section) + entry)), u"");
    EXPECT_EQ((Texts{TakeError(settings.EnumSections(names)), TakeError(settings.EnumEntries(u"T", names)),
                     TakeError(settings.EnumEntries(u"none", names))}),
              Texts(3));
    EXPECT_EQ(Listed(names), u"s|T|A|b|");
    registry.Before(RegistryCall::OpenKey, [] { return 16U; }); // which does not mean that it is missing
    EXPECT_EQ(TakeError(settings.EnumEntries(u"T", names)),
              u"Couldn't list the values of HKEY_CURRENT_USER\\Software\\M\\P\\T: " + GetSystemErrMsge(16));
    registry.Before(RegistryCall::OpenKey, {});
    for (String const& error :
         {String(), u"Couldn't delete value " + place + u"\\A: " + GetSystemErrMsge(platform::nothingThere)})
        EXPECT_EQ(TakeError(settings.DeleteEntry(u"S", u"A")), error);
    for (String const& error :
         {String(), u"Couldn't delete key " + place + u": " + GetSystemErrMsge(platform::nothingThere)})
        EXPECT_EQ(TakeError(settings.DeleteSection(u"S")), error);
    for (String const& entry : {String(u"two"), String(u"no/name"), Repeated(600, u'c')})
        ASSERT_EQ(TakeError(settings.WriteProfileStr(u"T", entry, u"a\nb")), u"");
    FileTreeConfig files(directory.Path());
    ASSERT_EQ(TakeError(files.WriteProfileStr(u"T", u"own", u"stays")), u"");
    EXPECT_NE(TakeError(CopySettings(settings, files)).Find(u"cccc"), -1); // the first of three
    EXPECT_EQ(files.GetReadOnlyString(u"T", u"A") + files.GetReadOnlyString(u"T", u"own"), u"TAstays");
    AppConfig back(u"M", u"Q", u"", false);
    EXPECT_EQ((Texts{TakeError(back.CheckExists(false)), TakeError(CopySettings(files, back))}), Texts(2));
    EXPECT_EQ(Stored(u"M\\Q\\T", u"b") + Stored(u"M\\Q\\T", u"own") + Stored(u"M\\Q\\T", u"two"), "Tbstaysa");
    ASSERT_EQ(TakeError(files.WriteProfileStr(u"t", u"B", u"another")), u""); // the same for a registry
    bool const isSameFile = files.GetReadOnlyString(u"T", u"b") == u"another";
    EXPECT_EQ(TakeError(CopySettings(files, back)).Find(u"[T] entry : b") == -1, isSameFile);
}

} // namespace
} // namespace QMT
