import sys
from pathlib import Path

# The description's own reader stands in the repository's root.
sys.path.insert(0, str(Path(__file__).resolve().parents[2]))
