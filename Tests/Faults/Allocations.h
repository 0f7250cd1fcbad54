// Memory that ends on request: a program with this source has an operator new of its own.
#pragma once

#include <cstdlib>
#include <functional>

namespace tests::faults {

enum class Lasting { One, AllFromThere };
/// Whose allocations count. With everybody's those of the test count too, so that code of templates is counted
/// whichever module's copy of it runs; those of libraries that are not ours never do.
enum class Whose { PlugIn, Everybody };

/// The n-th allocation from now on, from 1, fails, or that and all later ones. Until `off`.
void failAllocation(int n, Lasting lasting, Whose whose);
/// Allocations that counted since; n or more: the n-th has failed.
int off();

/// The numbers to try in turn: every one at first, then ever fewer, so that long work is tried at hundreds of places
/// all over. With TOLMEX_EVERY_ALLOCATION in the environment every one.
inline int following(int n) {
  constexpr int kEveryOne = 100, kPartOfTheWay = 50;
  static const bool wantsAll = std::getenv("TOLMEX_EVERY_ALLOCATION") != nullptr;
  return wantsAll || n < kEveryOne ? n + 1 : n + n / kPartOfTheWay;
}

/// Fails every allocation that `work` makes in turn: `prepare`, then `work` with the failure, then `look` without it.
/// Stops when nothing failed any more; answers how many failures there were.
int forEachAllocation(Lasting lasting, Whose whose, const std::function<void()>& prepare,
                      const std::function<void()>& work, const std::function<void(int n)>& look);

}  // namespace tests::faults
