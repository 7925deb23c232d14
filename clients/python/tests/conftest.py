import sys
from pathlib import Path

_REPOSITORY = Path(__file__).resolve().parents[3]
for _folder in (_REPOSITORY, _REPOSITORY / "tests/api", _REPOSITORY / "clients/python"):
    sys.path.insert(0, str(_folder))
