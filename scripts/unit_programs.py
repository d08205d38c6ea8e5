"""The unit programs of the tests, as tests/CMakeLists.txt builds them."""
import pathlib

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"


def programs_of(*folders):
    """The programs of folders below tests/, one for each folder that holds tests."""
    programs = []
    for folder in folders:
        with_tests = sorted({test.parent for test in (TESTS / folder).rglob("*_test.cpp")})
        programs += ["unit_" + str(inner.relative_to(TESTS)).replace("/", "_")
                     for inner in with_tests]
    return programs
