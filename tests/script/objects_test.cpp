// Named objects: member calls, default members, global members and errors raised by objects.
#include <memory>

#include "kivmovfrec/db.h"
#include "platform/vb/text.h"
#include "script_test_util.h"

namespace kivmovfrec::script::testing {
namespace {

// A small object: Twice(x), Self, Name, Fail (database failure), Count (number of calls),
// default member (i) -> i + 100 and, without arguments, 7.
class Fake : public Object, public std::enable_shared_from_this<Fake> {
 public:
  int calls = 0;
  std::string TypeName() const override { return "Fake"; }
  Variant Invoke(std::string_view name, std::span<const Variant> args) override {
    ++calls;
    auto is = [&](std::string_view n) { return vb::EqualsIgnoreCase(name, n); };
    if (name.empty()) {
      if (args.empty()) return Variant(int16_t{7});
      return Variant(static_cast<int32_t>(args[0].AsInteger() + 100));
    }
    if (is("Twice")) {
      if (args.size() != 1) throw VbError(450);
      return Variant(static_cast<int32_t>(args[0].AsInteger() * 2));
    }
    if (is("Self")) return Variant(std::static_pointer_cast<Object>(shared_from_this()));
    if (is("Name")) return Variant("fake");
    if (is("Fail")) throw DbError("no such table: X");
    if (is("Explode")) throw std::runtime_error("boom");
    throw VbError(438);
  }
};

struct ObjectsFixture : ::testing::Test {
  std::shared_ptr<Fake> fake = std::make_shared<Fake>();
  Engine engine{FixedClock()};
  void SetUp() override { engine.AddObject("Obj", fake, true); }
};

TEST_F(ObjectsFixture, MembersDefaultMembersAndGlobals) {
  ExpectValues(
      {
          {"Obj.Twice(4)", L(8)},
          {"obj.twice(4) + 1", L(9)},
          {"Obj(1)", L(101)},
          {"Obj.Self.Twice(2)", L(4)},
          {"Obj.Self()(3)", L(103)},
          {"Twice(5)", L(10)},
          {"Name & \"!\"", S("fake!")},
          {"Obj + 1", I(8)},
          {"Obj.Self * 2", I(14)},
          {"TypeName(Obj)", S("Fake")},
          {"IsObject(Obj.Self)", B(true)},
          {"Obj Is Obj.Self", B(true)},
          {"Obj Is Nothing", B(false)},
          {"Len(Obj)", L(1)},
          {"unknown", Variant()},
      },
      engine);
}

TEST_F(ObjectsFixture, ObjectErrors) {
  ExpectErrors(
      {
          {"Obj.Missing", 438, 0},
          {"Obj.Twice()", 450, 0},
          {" Obj.Fail", kDatabaseError, 1},
          {"Obj.Explode", 5, 0},
          {"Missing(1)", 13, 0},
          {"Obj.Twice(1) +", 1023, 14},
      },
      engine);
  const EvalResult r = engine.Eval("Obj.Fail");
  EXPECT_NE(r.error.description.find("no such table: X"), std::string::npos);
}

TEST_F(ObjectsFixture, NothingIsCalledBeforeTheTextCompiles) {
  const EvalResult r = engine.Eval("Obj.Twice(1) + Obj.Twice(2) +");
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(fake->calls, 0);
}

TEST(ScriptObjects, AddingANameTwiceReplacesTheObject) {
  Engine engine(FixedClock());
  auto first = std::make_shared<Fake>();
  auto second = std::make_shared<Fake>();
  engine.AddObject("o", first, false);
  engine.AddObject("O", second, false);
  ASSERT_TRUE(engine.Eval("o.Twice(1)").ok);
  EXPECT_EQ(first->calls, 0);
  EXPECT_EQ(second->calls, 1);
  // Without members_global a bare member name is just an unknown variable.
  const EvalResult r = engine.Eval("Twice");
  ASSERT_TRUE(r.ok);
  EXPECT_TRUE(r.value.IsEmpty());
}

}  // namespace
}  // namespace kivmovfrec::script::testing
