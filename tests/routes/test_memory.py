"""What answers to long lists take of memory: the bytes that the program asks for, which are the same on every machine."""

import pytest
from kit import long_lists

KEPT_AT_MOST = 1 << 20
# A request's own buffers, which do not grow with a list: of a list of some hundred KB they would be a part of the ratio.
SMALL_CHANGE = 64 << 10


@pytest.fixture
def counted(router):
    router.count_memory = True
    return router


def ask(router, subject, length):
    """The answer's size, and what the program held above that before it: at the height, and afterwards."""
    _, uri, _ = subject(router, length)
    router.get("/api/v1/ntp")
    if router.memory() is None:
        pytest.skip("nobody counts the allocations of this build")
    router.get(uri)  # what is made once is made
    router.get("/api/v1/ntp")  # the request before it is over for good
    router.forget_memory()
    before, _ = router.memory()
    answer = router.get(uri)
    _, most = router.memory()
    router.get("/api/v1/ntp")
    after, _ = router.memory()
    return len(answer.body), most - before, after - before


@pytest.mark.parametrize("subject", [long_lists.log, long_lists.leases, long_lists.scan, long_lists.clients,
                                     long_lists.stations], ids=lambda subject: subject.__name__)
def test_a_long_list_peaks_below_three_times_its_answer(counted, subject):
    answer, peak, kept = ask(counted, subject, 3000)
    assert answer > 200_000
    assert peak < 3 * answer + SMALL_CHANGE, f"{peak / answer:.2f} times the answer of {answer} bytes"
    assert kept < KEPT_AT_MOST


def test_long_rules_peak_at_the_tree_of_their_package_and_their_answer(counted):
    """libuci loads a package whole: for rules of four short options the tree alone is three times the answer."""
    answer, peak, kept = ask(counted, long_lists.parental_read, 3000)
    assert peak < 4.2 * answer + SMALL_CHANGE, f"{peak / answer:.2f} times the answer of {answer} bytes"
    assert kept < KEPT_AT_MOST
