#include "qmt/config/registry_tree.h"

#include "platform/registry_counting.h"
#include "qmt/helpers/system.h"
#include "support/registry_fixtures.h"

namespace QMT {
namespace {

// A registry that both does the work and counts the calls; the parameter says whether in memory.
struct RegistryTreeTest : testing::TestWithParam<bool> {
    // The tree A, opened.
    void OpenTree() { ASSERT_EQ(TakeError(tree.EnsureExists(false)), u""); }

    TempDirectory directory;
    TestRegistry inner = GetParam() ? MakeMemoryRegistry() : RegistryIn(directory);
    CountingRegistry registry{*inner};
    std::shared_ptr<Registry> const former = PutInUse(registry);
    RegistryCalls calls{*inner};
    bool const isReal = systemHasRegistry && !GetParam();
    RealRegistryTree tree{user, u"R", u"A"};
};

INSTANTIATE_TEST_SUITE_P(Implementations, RegistryTreeTest, testing::Bool());

TEST_P(RegistryTreeTest, WalksOnceAndKeepsWhatIsOpen) {
    {
        RealRegistryTree deep(user, u"R", u"A\\B\\C");
        EXPECT_EQ(TakeError(deep.CheckExists(false)),
                  u"Couldn't open R\\A; " + GetSystemErrMsge(platform::nothingThere));
        ASSERT_EQ(calls.Create(user, u"A\\B"), 0U);
        EXPECT_EQ(TakeError(deep.CheckExists(true)),
                  u"Couldn't open R\\A; \\B\\C" + GetSystemErrMsge(platform::nothingThere));
        ASSERT_EQ(calls.Create(user, u"A\\B\\C"), 0U);
        registry.Reset();
        EXPECT_EQ(TakeError(deep.CheckExists(true)), u"");
        EXPECT_EQ(registry.Calls(), 1); // it went on from the first key still closed
        EXPECT_EQ(TakeError(deep.CheckExists(false)) + TakeError(deep.EnsureExists(false)), u"");
        EXPECT_EQ(registry.Calls(), 1);
        EXPECT_EQ(TakeError(deep.WriteProfileStr(u"e", u"v")), u"Couldn't open reg key: e: "); // reads only
    }
    EXPECT_EQ(registry.Calls(RegistryCall::CloseKey), 3);
    RealRegistryTree made(user, u"R", u"A\\D\\E");
    int left = 2;
    registry.Before(RegistryCall::CreateKey, [&left] { return left-- > 0 ? 0U : 13U; });
    EXPECT_EQ(TakeError(made.EnsureExists(false)), u"Couldn't open R\\A\\D\\E: ");
    registry.Before(RegistryCall::CreateKey, nullptr);
    EXPECT_EQ(TakeError(made.EnsureExists(false)), u"");
    EXPECT_EQ(calls.Open(user, u"A\\D\\E"), 0U);
}

TEST_P(RegistryTreeTest, ReadsInOneQueryUpTo200Bytes) {
    EXPECT_EQ(tree.GetData(u"e"), u"");
    OpenTree();
    for (auto const& [units, queries] : {std::pair<std::size_t, int>{99, 1}, {100, 2}, {1 << 19, 2}}) {
        String const text = Repeated(units, u'\x20AC');
        ASSERT_EQ(TakeError(tree.WriteProfileStr(u"e", text)), u"");
        registry.Reset();
        EXPECT_EQ(tree.GetData(u"e"), text);
        EXPECT_EQ(registry.Calls(RegistryCall::QueryValue), queries);
    }
    int query = 0; // it grows in front of the second one
    registry.Before(RegistryCall::QueryValue, [&] {
        return ++query == 2 ? calls.Set(calls.key, u"e", std::string((1 << 20) + 4, 'x')) : 0;
    });
    ASSERT_EQ(calls.Open(user, u"A"), 0U);
    EXPECT_EQ(tree.GetData(u"e"), u"");
    EXPECT_EQ(query, 2);
}

TEST_P(RegistryTreeTest, TextEndsAtAZeroOrWhereTheDataEnds) {
    OpenTree();
    ASSERT_EQ(calls.Open(user, u"A"), 0U);
    using namespace std::string_literals;
    for (auto const& [bytes, text] : {std::pair<std::string, char16_t const*>{"a\0b\0"s, u"ab"},
                                      {"a\0b"s, u"a"},
                                      {"a\0\0\0b\0"s, u"a"},
                                      {"", u""},
                                      {"x", u""}}) {
        ASSERT_EQ(calls.Set(calls.key, u"e", bytes, 9), 0U);
        EXPECT_EQ(tree.GetData(u"e"), text);
    }
    EXPECT_EQ(TakeError(tree.WriteProfileDWORD(u"e", 0x00420041UL | (1UL << 31 << 1))), u"");
    EXPECT_EQ(tree.GetData(u"e"), u"AB");
    EXPECT_TRUE(calls.Query(calls.key, u"e") == "A\0B\0"s && calls.type == REG_DWORD);
    EXPECT_EQ(TakeError(tree.WriteProfileStr(u"e", u"A")), u"");
    EXPECT_TRUE(calls.Query(calls.key, u"e") == "A\0\0\0"s && calls.type == REG_SZ);
}

TEST_P(RegistryTreeTest, SectionsAndSeveralValues) {
    Names values, names;
    EXPECT_EQ(TakeError(tree.ReadMultipleValues(u"S", names, values)), u"Couldn't open reg key: R\\A\\S");
    EXPECT_EQ(tree.GetStringNoDefault(u"S", u"e"), u"");
    OpenTree();
    EXPECT_EQ(tree.GetStringNoDefault(u"S", u"e"), u"");
    ASSERT_EQ(calls.Open(user, u"A\\S"), 0U); // reading has made it
    ASSERT_EQ((Results{calls.Set(calls.key, u"odd", "x"), calls.Set(calls.key, u"e", {"v\0\0\0", 4})}),
              Results(2, 0));
    EXPECT_EQ(tree.GetStringNoDefault(u"S", u"e"), u"v");
    EXPECT_EQ(TakeError(tree.ReadMultipleValues(u"S", names, values)), u"");
    for (char16_t const* const name : {u"e", u"odd", u"e"})
        names.Add(name);
    values.Add(u"before");
    EXPECT_EQ(TakeError(tree.ReadMultipleValues(u"S", names, values)), u"");
    String const problem = u"Problem reading multiple values from registry for key S";
    int queries = 0;
    registry.Before(RegistryCall::QueryMultipleValues, [&queries] { return ++queries == 2 ? 5U : 0U; });
    EXPECT_EQ(TakeError(tree.ReadMultipleValues(u"S", names, values)), problem);
    names.Add(u"none");
    EXPECT_EQ(TakeError(tree.ReadMultipleValues(u"S", names, values)), problem);
    EXPECT_EQ(Listed(values), u"before|v||v|");
}

TEST_P(RegistryTreeTest, ListsAndDeletes) {
    OpenTree();
    Names names;
    auto const list = [&] {
        return Texts{TakeError(tree.EnumSubKeys(names)), TakeError(tree.EnumValueNames(names))};
    };
    EXPECT_EQ(list(), Texts(2));
    names.Add(u"first");
    for (char16_t const* const name : {u"a", u"b", u"C\\d"}) {
        ASSERT_EQ(calls.Create(user, String(u"A\\") + name), 0U);
        ASSERT_EQ(TakeError(tree.WriteProfileStr(name, u"")), u"");
    }
    EXPECT_EQ(list(), Texts(2));
    EXPECT_EQ(Listed(names), u"first|a|b|C|a|b|C\\d|");
    EXPECT_EQ((Texts{TakeError(tree.DeleteSubKey(u"C")), TakeError(tree.DeleteSubKey(u"C\\d")),
                     TakeError(tree.DeleteSubKey(u"C")), TakeError(tree.DeleteValue(u"b")),
                     TakeError(tree.DeleteValue(u"b"))}),
              (Texts{u"Couldn't delete key C: ", u"", u"", u"", u"Did not succeed"}));
    if (isReal)
        return; // its names have at most 255 units
    for (std::size_t const units : {499U, 500U}) {
        ASSERT_EQ(calls.Create(user, u"A\\" + Repeated(units, u'b')), 0U);
        names.RemoveAll();
        EXPECT_EQ(TakeError(tree.EnumSubKeys(names)), units < 500 ? u"" : u"No more items");
        EXPECT_EQ(names.Size(), 3U); // what stands in front of the long name is there
    }
}

TEST_P(RegistryTreeTest, AnEmptyPathWorksOnTheRoot) {
    RealRegistryTree root(user, u"R", u"");
    Names names;
    EXPECT_EQ(TakeError(root.CheckExists(false)) + TakeError(root.EnsureExists(false)) + root.GetData(u"e") +
                  TakeError(root.EnumValueNames(names)),
              u"");
    EXPECT_EQ(registry.Calls(), 0);
    EXPECT_EQ(root.GetStringNoDefault(u"S", u"e"), u"");
    EXPECT_EQ(TakeError(root.EnumSubKeys(names)), u"");
    EXPECT_EQ(Listed(names), u"S|Software|");
    EXPECT_EQ(TakeError(root.DeleteSubKey(u"S")), u"");
    EXPECT_EQ((Texts{TakeError(root.WriteProfileStr(u"e", u"v")), TakeError(root.WriteProfileDWORD(u"e", 1)),
                     TakeError(root.DeleteValue(u"e"))}),
              (Texts{u"Couldn't open reg key: e: ", u"Couldn't open reg key: e: ", u"Did not succeed"}));
}

TEST_P(RegistryTreeTest, ExportReplacesTheFile) {
    if (isReal)
        GTEST_SKIP() << "the system's registry saves its own form, for users with the right to make backups";
    OpenTree();
    String const file = directory.Path(u"saved.reg");
    auto const exportedSize = [&] {
        EXPECT_EQ(TakeError(tree.Export(file)), u"");
        return std::filesystem::file_size(directory.Place() / "saved.reg");
    };
    auto const before = exportedSize();
    EXPECT_EQ(TakeError(tree.WriteProfileStr(u"e", u"v")), u"");
    EXPECT_EQ(exportedSize(), before + 2 * std::string("'e'='v'\r\n").size());
    EXPECT_EQ(TakeError(tree.Import(file + u"x")), u"");
    EXPECT_EQ(TakeError(tree.Export(file + u"/x")),
              u"Couldn't save to regfile " + file + u"/x; " + GetSystemErrMsge(noSuchDirectory));
}

} // namespace
} // namespace QMT
