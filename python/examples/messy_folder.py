"""A messy folder becomes one table. Run it, or step through its cells in an editor that knows "# %%".

    python3 python/examples/messy_folder.py [FOLDER]

Five stations send their levels every month, each as its own program likes it.
"""
from __future__ import annotations

import pathlib
import sys
import tempfile

import vltext

# %% The folder
folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else tempfile.mkdtemp())

MESS = {
    "altdorf.csv": "station,day,level [m]\nAltdorf,2024-03-01,3.45\nAltdorf,2024-03-02,3.61\n",
    "bruck.csv": "Pegelbericht M\xe4rz\n\nstation;day;level [m]\nBruck;01.03.2024;1,12\nBruck;02.03.2024;k.A.\n"
                 "Bruck;03.03.2024;1,09\n",
    "celle.txt": "station|level [m]|day\nCelle|2.5|2024-03-01\nCelle|2.25|2024-03-02\n# pump off\n"
                 "Celle|2.75|2024-03-03\n",
    "duren.tsv": 'day\tstation\tlevel [m]\n2024-03-01\t"D\xfcren\nNord"\t4\n2024-03-02\t"D\xfcren\nNord"\t5\n',
    "essen.csv": "station,day,level [cm]\nEssen,2024-03-01,310\nEssen,2024-03-02,305\n",
    "readme.txt": "These are the levels of March.\nPlease write to us if anything is missing.\n",
}
for name, text in MESS.items():
    (folder / name).write_bytes(text.encode("windows-1252" if name == "bruck.csv" else "utf-8"))

# %% What is in it
for path in sorted(folder.iterdir()):
    print(f"{path.name:12} {vltext.detect(path)!r}")

# %% Which files do not fit
many = vltext.read_many(folder, misfits="skip")
for file, reason in many.misfits.items():
    print(f"{pathlib.Path(file).name}: {reason}")

# %% One table
table = many.to_polars()
print(many)
print(table["station"].to_list())
print(table["level [m]"].to_list())

# %% What became of every line
for file, account in many.accounts.items():
    fates = ", ".join(f"{count} {fate}" for fate, count in account.lines.items() if count)
    print(f"{pathlib.Path(file).name}: {account.num_lines} lines: {fates}")
