#include <gtest/gtest.h>

#include "include/cef_jsdialog_handler.h"
#include "support/framework.h"
#include "support/test_browser.h"

namespace cef_test {
namespace {

using Dialogs = std::vector<std::string>;

struct DialogPage : testing::Test {
  // Answers every dialog at once.
  void answer(bool success, const CefString& input) {
    page.client().onDialog = [this, success, input](auto type, const CefString& text,
                                                    const CefString& proposal, auto callback) {
      seen.push_back(std::to_string(type) + text.ToString() + "|" + proposal.ToString());
      callback->Continue(success, input);
      return true;
    };
  }

  TestBrowser page{""};
  Dialogs seen;
};

TEST_F(DialogPage, AsksTheClientForEveryKindAndGivesItsAnswerToThePage) {
  answer(true, "typed");
  EXPECT_EQ(page.evaluate("String(alert('a&b=\\u00fc%')) + confirm() + prompt('p', 'proposal')"),
            "undefinedtruetyped");
  answer(false, "typed");
  EXPECT_EQ(page.evaluate("String(confirm('c')) + prompt('q')"), "falsenull");
  EXPECT_EQ(seen, (Dialogs{"0a&b=\u00fc%|", "1|", "2p|proposal", "1c|", "2q|"}));
}

TEST_F(DialogPage, WaitsForALaterAnswerWhileAllOtherPagesAreServed) {
  TestBrowser other("");
  CefRefPtr<CefJSDialogCallback> kept;
  page.client().onDialog = [&](auto, auto&, auto&, auto callback) {
    kept = callback;
    return true;
  };
  page.run("testQuery({request: 'answered ' + confirm('?')})");
  ASSERT_TRUE(runUntil([&] { return kept.get() != nullptr; }));
  EXPECT_EQ(other.evaluate("new Promise(done => requestAnimationFrame(() => testQuery({request: "
                           "'served', onSuccess: done})))"),
            "served");
  EXPECT_TRUE(page.client().requests.empty());
  kept->Continue(true, "");
  kept->Continue(false, "");
  EXPECT_TRUE(page.waitFor("answered true"));
}

TEST_F(DialogPage, TakesACallbackThatIsReleasedForARefusal) {
  page.client().onDialog = [](auto, auto&, auto&, auto) { return true; };
  EXPECT_EQ(page.evaluate("confirm('?')"), "false");
}

TEST_F(DialogPage, CanBeClosedWhileADialogWaits) {
  CefRefPtr<CefJSDialogCallback> kept;
  page.client().onDialog = [&](auto, auto&, auto&, auto callback) {
    kept = callback;
    return true;
  };
  page.run("confirm('?')");
  ASSERT_TRUE(runUntil([&] { return kept.get() != nullptr; }));
  page.browser()->GetHost()->CloseBrowser(true);
  EXPECT_TRUE(page.waitForEvent("closed"));
  kept->Continue(true, "");
  runQueued();
}

TEST_F(DialogPage, AsksForDialogsOfFramesToo) {
  answer(true, "");
  page.run(
      "const f = document.createElement('iframe'); f.srcdoc = `<script>testQuery({request: "
      "'frame ' + confirm('in frame')})<\\/script>`; document.body.append(f)");
  EXPECT_TRUE(page.waitFor("frame true"));
  EXPECT_EQ(seen, Dialogs{"1in frame|"});
}

}  // namespace
}  // namespace cef_test
