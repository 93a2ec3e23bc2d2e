"""Memory that ends in the middle of a request ends the request, and nothing else."""

from torture.faults import FROM_THEN_ON, KINDS, FaultyUnit, ended_by_libfcgi


def test_a_request_that_runs_out_of_memory_is_told_so_and_the_program_goes_on():
    faulty, told = FaultyUnit("ntp"), 0
    try:
        most = faulty.counts["memory"]
        for at in range(1, most, max(1, most // 25)):
            faulty.control.arm(KINDS.index("memory"), at, FROM_THEN_ON)
            answer = faulty.unit.send(faulty.body)
            faulty.control.disarm()
            assert faulty.unit.router.alive() or ended_by_libfcgi(faulty.unit.router), faulty.unit.router.report()
            told += answer.text == '{"result": 1}'
            faulty.again(fresh=not faulty.unit.router.alive())
        assert told > 0
        faulty.unit.finish()
    finally:
        faulty.unit.router.discard()
