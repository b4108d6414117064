// The script of both measured pages.
#pragma once

#include <string>

namespace bench {

// `measure(inFlight, count)` gives the queries a second of the page's `ask(request, done)`, with
// requests of 100 characters. `seen(n)` is what executed scripts call with 0, 1, 2, …
inline const std::string kPageFunctions = R"(
  let last = -1, inOrder = true;
  function seen(n) { if (n !== 0 && n !== last + 1) inOrder = false; last = n; }
  function measure(inFlight, count) {
    return new Promise(finished => {
      const request = 'x'.repeat(100);
      const start = performance.now();
      let sent = 0, answered = 0;
      function next() {
        ++sent;
        ask(request, () => {
          if (++answered === count) finished(1000 * count / (performance.now() - start));
          else if (sent < count) next();
        });
      }
      while (sent < inFlight) next();
    });
  }
)";

// The n-th of the scripts that are executed: 100 characters.
inline std::string script(int n) {
  std::string text = "seen(" + std::to_string(n) + "); /*";
  return text + std::string(98 - text.size(), '-') + "*/";
}

}  // namespace bench
