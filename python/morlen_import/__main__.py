"""`python3 -m morlen_import` runs the program."""

import sys

from morlen_import.command_line import main

sys.exit(main())
