"""The version is the project's; the rest is in pyproject.toml."""

import re
from pathlib import Path

from setuptools import setup

project = Path(__file__).resolve().parents[1] / "CMakeLists.txt"
setup(version=re.search(r"\nproject\(\S+ VERSION ([0-9.]+)",
                        project.read_text())[1])
