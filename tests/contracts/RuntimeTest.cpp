#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "contracts/AppSystem.h"
#include "contracts/Generics.h"
#include "contracts/Interfaces.h"
#include "contracts/ViewUnits.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

constexpr const char* kUnitName = "RuntimeTest";

TEST(Assertion, RaisesWithTextUnitAndLine)
{
    const auto at = [](int line) { return " (RuntimeTest, line " + std::to_string(line) + ")"; };
    EXPECT_EQ(testing::Raised<EAssertionFailed>([] { Assert(1 + 1 == 3); }), "Assertion failure" + at(__LINE__));
    EXPECT_EQ(testing::Raised<EAssertionFailed>([] { Assert(false, "own text"); }), "own text" + at(__LINE__));
    EXPECT_NO_THROW(Assert(true));
}

struct Counted {
    explicit Counted(int& alive) : Alive(alive) { ++Alive; }
    ~Counted() { --Alive; }
    int& Alive;
};

TEST(Lists, CheckIndicesKeepOrderCopyDeepMoveEmptyAndOwnOnlyWhatTheyOwn)
{
    TList<int> list{1, 2, 3};
    list.Add(4);
    list.Delete(0);
    list.Insert(3, 5);
    EXPECT_EQ(list.Items(), (std::vector<int>{2, 3, 4, 5}));
    EXPECT_THROW(list.GetItem(4), EArgumentOutOfRangeException);
    EXPECT_THROW(list.Delete(-1), EArgumentOutOfRangeException);
    EXPECT_THROW(TViewUnitList().First(), EArgumentOutOfRangeException);
    EXPECT_EQ(testing::Raised<Exception>([&] { list.GetItem(-1); }), "Argument out of range");

    TList<std::vector<int>> a;
    a.Add({1, 2});
    TList<std::vector<int>> copy = a;
    copy[0].push_back(3);
    EXPECT_EQ(a[0].size(), 2u);
    TList<std::vector<int>> moved = std::move(a);
    EXPECT_EQ(moved.Count(), 1);
    EXPECT_EQ(a.Count(), 0);  // NOLINT: a moved-from list is empty and usable
    static_assert(std::is_nothrow_move_constructible_v<TList<int>>);

    int alive = 0;
    {
        TObjectList<Counted> owning;
        owning.Add(new Counted(alive));
        owning.Add(new Counted(alive));
        owning.Delete(0);
        EXPECT_EQ(alive, 1);
        Counted* kept = new Counted(alive);
        owning.Add(kept);
        EXPECT_EQ(owning.Extract(1), kept);
        delete kept;
    }
    EXPECT_EQ(alive, 0);
    Counted outside(alive);
    {
        TObjectList<Counted> borrowing(false);
        borrowing.Add(&outside);
    }
    EXPECT_EQ(alive, 1);
}

TEST(Dictionary, RejectsDuplicatesAndIgnoresMissingRemoves)
{
    TDictionary<std::string, int> d;
    d.Add("a", 1);
    EXPECT_THROW(d.Add("a", 2), EListError);
    d.AddOrSetValue("a", 3);
    int v = 0;
    EXPECT_TRUE(d.TryGetValue("a", v));
    EXPECT_EQ(v, 3);
    d.Remove("missing");
    d.Remove("a");
    EXPECT_FALSE(d.TryGetValue("a", v));
    EXPECT_EQ(v, 3);
    EXPECT_THROW(d.GetItem("a"), EListError);
}

class IProbe : public virtual IInterface {
public:
    static constexpr TGUID IID = TGUID::FromString("{11111111-2222-3333-4444-555555555555}");
    virtual int Value() = 0;
};

class TProbe : public TInterfacedObject, public IProbe {
public:
    explicit TProbe(bool& freed) : FFreed(freed) {}
    ~TProbe() override { FFreed = true; }
    int QueryInterface(const TGUID& iid, void** obj) override
    {
        return Answer<IProbe>(iid, obj) == S_OK ? S_OK : TInterfacedObject::QueryInterface(iid, obj);
    }
    int Value() override { return 42; }

private:
    bool& FFreed;
};

TEST(AppSystem, GuidsServicesByQueryAndMessagesThroughTheSink)
{
    constexpr TGUID g = TGUID::FromString("{8AA0B750-BCB5-41BA-90CC-75668870F362}");
    static_assert(g.D1 == 0x8AA0B750u && g.D2 == 0xBCB5 && g.D3 == 0x41BA && g.D4[0] == 0x90 && g.D4[7] == 0x62);
    EXPECT_EQ(g.ToString(), "{8AA0B750-BCB5-41BA-90CC-75668870F362}");
    EXPECT_THROW(TGUID::FromString("{8AA0B750-BCB5-41BA-90CC-75668870F36}"), EArgumentException);
    EXPECT_THROW(TGUID::FromString("{8AA0B750-BCB5-41BA-90CC-75668870F36X}"), EArgumentException);

    bool freed = false;
    TAppSystem app;
    {
        TInterfacePtr<IInterface> root(static_cast<IInterface*>(new TProbe(freed)));
        app.RegisterService(IProbe::IID, root.get());
    }
    EXPECT_FALSE(freed);
    TInterfacePtr<IInterface> found(app.GetService(IProbe::IID));
    ASSERT_TRUE(found);
    auto probe = found.Query<IProbe>();
    ASSERT_TRUE(probe);
    EXPECT_EQ(probe->Value(), 42);
    constexpr TGUID other = TGUID::FromString("{99999999-2222-3333-4444-555555555555}");
    void* obj = &app;
    EXPECT_EQ(found->QueryInterface(other, &obj), E_NOINTERFACE);
    EXPECT_EQ(obj, nullptr);
    EXPECT_EQ(app.GetService(other), nullptr);
    found = nullptr;
    probe = nullptr;
    app.ClearServices();
    EXPECT_TRUE(freed);

    testing::MessageCapture capture;
    AppSys.ShowMsg("first", 0);
    AppSys.ShowMsg("第二", 0);
    EXPECT_EQ(capture.Texts(), (std::vector<std::string>{"first", "第二"}));
}

}  // namespace
}  // namespace orvane
