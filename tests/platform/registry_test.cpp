#include "qmt/platform/registry.h"

#include <map>

#include "platform/registry_counting.h"
#include "support/file_content.h"
#include "support/registry_fixtures.h"

namespace QMT {
namespace {

using namespace std::string_literals;
using namespace platform;

// ---- what every registry does

struct AnyRegistryTest : testing::TestWithParam<std::string> {
    TempDirectory directory;
    TestRegistry inner = GetParam() == "memory" ? MakeMemoryRegistry() : RegistryIn(directory);
    CountingRegistry counting{*inner};
    RegistryCalls calls{GetParam() == "counted" ? counting : *inner};
    bool const isReal = systemHasRegistry && GetParam() != "memory";
};

INSTANTIATE_TEST_SUITE_P(Implementations, AnyRegistryTest, testing::Values("memory", "system", "counted"),
                         [](auto const& suite) { return suite.param; });

TEST_P(AnyRegistryTest, KeysAreFoundByPathAndCreatedOnDemand) {
    for (void* root : {user, machine}) {
        ASSERT_EQ(calls.Open(root, u"Software"), 0U);
        void* const software = calls.key;
        EXPECT_EQ(calls.Open(software, u"A"), nothingThere);
        EXPECT_EQ(calls.Create(software, isReal ? u"A\\B\\c\xD800" : u"\\A\\\\B\\c\xD800\\"), 0U);
        void* const deep = calls.key;
        EXPECT_EQ((Results{calls.disposition, calls.Set(deep, u"x", "12")}), (Results{1, 0}));
        EXPECT_EQ((Results{calls.Create(root, u"SOFTWARE\\a\\b\\C\xD800"), calls.disposition}),
                  (Results{0, 2}));
        EXPECT_EQ(calls.Query(calls.key, u"X"), "12");
        EXPECT_EQ(calls.Open(deep, u""), 0U); // the key itself
        EXPECT_EQ(calls.registry.RegCloseKey(deep), 0U);
        EXPECT_EQ(calls.Query(calls.key, u"x"), "12");
        EXPECT_EQ(calls.Open(calls.key, u"d"), nothingThere);
        EXPECT_EQ(calls.registry.RegCloseKey(root), 0U);
        for (void* none : {deep, static_cast<void*>(nullptr)})
            EXPECT_EQ(
                (Results{calls.Open(none, u"A"), calls.Create(none, u"A"), calls.Set(none, u"x", ""),
                         calls.DeleteValue(none, u"x"), calls.Delete(none, u"A"),
                         isReal ? noOpenKey : calls.Save(none, u"x"), calls.registry.RegCloseKey(none)}),
                Results(7, noOpenKey));
    }
}

TEST_P(AnyRegistryTest, ValuesComeBackByteForByte) {
    ASSERT_EQ(calls.Create(user, u"Software\\V"), 0U);
    void* const key = calls.key;
    std::map<String, std::string> const values{{u"", "default"},
                                               {Repeated(500, u'n'), "long"},
                                               {u"a\\b", ""},
                                               {u"line\r\n\x1", "\0\xFF\n"s},
                                               {u"\xDC80\xD800", "odd"},
                                               {u"\xD83D\xDE00\xFFFD", std::string(1 << 20, 'b')}};
    for (auto const& [name, bytes] : values) {
        EXPECT_EQ(calls.Set(key, name, "to be replaced"), 0U);
        EXPECT_EQ(calls.Set(key, name, bytes, 0x8000000AU), 0U);
    }
    for (auto const& [name, bytes] : values) {
        EXPECT_EQ(calls.Query(key, name), bytes);
        EXPECT_EQ((Results{calls.type, calls.DeleteValue(key, name), calls.DeleteValue(key, name)}),
                  (Results{0x8000000AU, 0, nothingThere}));
        EXPECT_EQ(calls.Query(key, name), "error 2");
    }
}

TEST_P(AnyRegistryTest, AHandleOfADeletedKeyIsNoneOfANewOne) {
    ASSERT_EQ(calls.Create(user, u"D\\E"), 0U);
    void* const deep = calls.key;
    EXPECT_EQ((Results{calls.Delete(user, u"F"), isReal ? badArgument : calls.Delete(deep, u"\\"),
                       calls.Delete(user, u"d\\e")}),
              (Results{nothingThere, badArgument, 0}));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(calls.Query(deep, u"x"), "error " + std::to_string(keyIsGone));
        EXPECT_EQ(calls.Names(deep, true), String() << keyIsGone);
        EXPECT_EQ((Results{calls.Set(deep, u"x", "1"), calls.Create(deep, u"F"), calls.Delete(deep, u"F")}),
                  Results(3, keyIsGone));
        EXPECT_EQ(calls.Create(user, u"D\\E"), 0U);
    }
}

// Random calls beside a map of paths to values.
TEST_P(AnyRegistryTest, DoesWhatASimpleModelDoes) {
    std::mt19937 random = SeededGenerator();
    std::map<String, std::map<String, std::string>> model{{u"a", {}}};
    ASSERT_EQ(calls.Create(user, u"a"), 0U);
    for (int step = 0; step < 600; ++step) {
        auto const any = std::next(model.begin(), static_cast<int>(random() % model.size()));
        String const path = any->first;
        String const name = String() << static_cast<int>(random() % 5);
        ASSERT_EQ(calls.Open(user, path), 0U);
        void* const key = calls.key;
        String names;
        for (auto const& [valueName, bytes] : any->second) {
            names << valueName << u"|";
            ASSERT_EQ(calls.Query(key, valueName), bytes);
        }
        ASSERT_EQ(calls.Names(key, false), names << 259);
        bool const hasSubKeys =
            std::next(any) != model.end() && std::next(any)->first.Find(path + u"\\") == 0;
        ASSERT_EQ(calls.Names(key, true) != u"259", hasSubKeys);
        auto const choice = random() % 4;
        if (choice == 0) {
            bool const isNew = model.try_emplace(path + u"\\" + name).second;
            ASSERT_EQ((Results{calls.Create(key, name), calls.disposition}), (Results{0, isNew ? 1U : 2U}));
        } else if (choice == 1) {
            ASSERT_EQ(calls.Set(key, name, any->second[name] = std::to_string(step), 3), 0U);
        } else if (choice == 2) {
            ASSERT_EQ(calls.DeleteValue(key, name) == 0, any->second.erase(name) == 1);
        } else if (path != u"a") {
            ASSERT_EQ(calls.Delete(user, path), hasSubKeys ? platform::hasSubKeys : 0);
            std::erase_if(model, [&](auto const& entry) { return entry.first == path && !hasSubKeys; });
        }
    }
}

TEST_P(AnyRegistryTest, ThreadsShareIt) {
    for (std::array<std::jthread, 4> threads; auto& thread : threads)
        thread = std::jthread([this, &thread, &first = threads[0]] {
            RegistryCalls own{*inner};
            String const name = String() << static_cast<int>(&thread - &first);
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ((Results{own.Create(user, u"T"), own.Set(own.key, name, "1"),
                                   own.DeleteValue(own.key, name), own.Set(own.key, name, "2"),
                                   own.registry.RegCloseKey(own.key)}),
                          Results(5, 0));
        });
    ASSERT_EQ(calls.Open(user, u"T"), 0U);
    EXPECT_EQ(calls.Names(calls.key, false), u"0|1|2|3|259");
}

std::string Utf16(std::u16string const& text) {
    return {reinterpret_cast<char const*>(text.data()), 2 * text.size()};
}

TEST_P(AnyRegistryTest, SavesTextThatEditorsRead) {
    if (isReal)
        GTEST_SKIP() << "the system's registry saves its own form, for users with the right to make backups";
    ASSERT_EQ((Results{calls.Create(user, u"S]\\sub"), calls.Open(user, u"S]")}), Results(2, 0));
    void* const key = calls.key;
    for (auto const& [name, text] :
         {std::pair{u"", u"d"}, {u"a\"\\b\n", u"say \"\\\" \u20AC"}, {u"e", u"\xD800"}})
        ASSERT_EQ(calls.Set(key, name, Utf16(text + u"\0"s)), 0U);
    ASSERT_EQ((Results{calls.Set(key, u"f", "\x78\x56\x34\x12", REG_DWORD),
                       calls.Set(key, u"g", std::string(30, '\xAB'), 3)}),
              Results(2, 0));
    String const file = directory.Path(u"saved.reg");
    EXPECT_EQ((Results{calls.Save(key, file), calls.Save(key, file), calls.Save(key, file + u"/x")}),
              (Results{0, fileIsThere, noSuchDirectory}));
    EXPECT_EQ(
        ContentOf(directory.Place() / "saved.reg"),
        Utf16(u"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\S]]\r\n@=\"d\"\r\n"
              u"\"a\\\"\\\\b\\n\"=\"say \\\"\\\\\\\" \u20AC\"\r\n\"e\"=hex(1):00,d8,00,00\r\n"
              u"\"f\"=dword:12345678\r\n"
              u"\"g\"=hex:ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,\\\r\n"
              u"  ab,ab,ab,ab,ab,ab,ab\r\n\r\n[HKEY_CURRENT_USER\\S]\\sub]\r\n"));
    EXPECT_EQ((Results{calls.Create(key, u"two\nlines"), calls.Save(key, file + u"2")}),
              (Results{0, noNameInText}));
}

// In the folder QMT_SAVED_REGISTRY for scripts/check_saved_registry.py, which has a tool of others read it.
TEST(SavedRegistry, HoldsValuesOfManyKindsForOthersToRead) {
    TempDirectory const directory;
    char const* const given = std::getenv("QMT_SAVED_REGISTRY");
    std::mt19937 random = SeededGenerator();
    // Any units but zero, those with a meaning in the file more often.
    auto const anyText = [&](std::size_t longest) {
        std::u16string text(random() % (longest + 1), u'x');
        for (char16_t& unit : text)
            unit = random() % 2 ? u"\"\\\r\n\t[]=@%;,\xD800\xDC00\xFEFF\u20AC"[random() % 16]
                                : static_cast<char16_t>(1 + random() % 0xFFFD);
        return text;
    };
    auto const registry = MakeMemoryRegistry();
    RegistryCalls calls{*registry};
    for (int number = 0; number < 200; ++number) {
        String const key = String(u"Software\\QmtSaved\\key") << number % 7;
        std::u16string const name = number < 7 ? u"" : anyText(20) + static_cast<char16_t>(0x400 + number);
        std::uint32_t const type = std::array<std::uint32_t, 4>{1, 3, 4, 7}[random() % 4];
        std::u16string const text =
            type == REG_DWORD ? std::u16string(2, static_cast<char16_t>(random())) : anyText(90) + u"\0"s;
        ASSERT_EQ((Results{calls.Create(user, key), calls.Set(calls.key, name.c_str(), Utf16(text), type)}),
                  Results(2, 0));
    }
    String const folder = given ? DecodeFromUTF8(given, false) : directory.Path();
    ASSERT_EQ(calls.Open(user, u"Software\\QmtSaved"), 0U);
    EXPECT_EQ(calls.Save(calls.key, folder + u"/saved.reg"), 0U);
}

} // namespace
} // namespace QMT
