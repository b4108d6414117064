#include <gtest/gtest.h>

#include "include/cef_command_line.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"

namespace {

TEST(CefListValue, GrowsWithNullsAndIsCopiedWithItsMessage) {
  const auto message = CefProcessMessage::Create("name");
  const auto list = message->GetArgumentList();
  list->SetString(2, "text");
  EXPECT_EQ(list->GetSize(), 3u);
  EXPECT_EQ(list->GetType(0), VTYPE_NULL);
  EXPECT_EQ(list->GetInt(2), 0);  // of another type
  EXPECT_EQ(list->GetString(2), "text");
  EXPECT_EQ(list->GetString(9), "");
  EXPECT_EQ(list->GetType(9), VTYPE_INVALID);

  list->SetBool(0, true);
  const auto copy = message->Copy();
  const auto listCopy = list->Copy();
  list->SetBool(0, false);
  EXPECT_TRUE(listCopy->GetBool(0));
  EXPECT_TRUE(copy->IsValid());
  EXPECT_EQ(copy->GetName(), "name");
  EXPECT_TRUE(copy->GetArgumentList()->GetBool(0));
}

TEST(CefCommandLine, TellsSwitchesFromArguments) {
  const char* argv[] = {"/bin/program", "--Name=a=b", "-x", "file", "--", "--late", "-"};
  const auto line = CefCommandLine::CreateCommandLine();
  line->InitFromArgv(7, argv);
  EXPECT_EQ(line->GetProgram(), "/bin/program");
  EXPECT_EQ(line->GetSwitchValue("name"), "a=b");
  EXPECT_TRUE(line->HasSwitch("x"));
  EXPECT_FALSE(line->HasSwitch("late"));
  CefCommandLine::ArgumentList arguments;
  line->GetArguments(arguments);
  EXPECT_EQ(arguments, (CefCommandLine::ArgumentList{"file", "--late", "-"}));
  std::vector<CefString> all;
  line->GetArgv(all);
  EXPECT_EQ(all.size(), 7u);
}

}  // namespace
