"""layers.py SRC TABLE: fails when a file of SRC includes a folder of SRC that TABLE does not put below its own."""
import pathlib, re, sys

src, table = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
below = {}
for line in table.read_text().splitlines():
    if line.strip() and not line.startswith("#"):
        folder, _, allowed = line.partition(":")
        below[folder.strip()] = {folder.strip(), *allowed.split()}
layers = {path.name for path in src.iterdir() if path.is_dir()}
wrong = []
for file in sorted(src.rglob("*.[ch]*")):
    folder = file.relative_to(src).parts[0]
    for number, line in enumerate(file.read_text().splitlines(), 1):
        included = re.match(r'\s*#\s*include\s*"(\w+)/', line)
        if included and included[1] in layers and included[1] not in below.get(folder, ()):
            wrong.append(f"{file}:{number}: {folder}/ includes {included[1]}/, which is not below it")
print("\n".join(wrong) or f"{len(layers)} folders, each including only the layers below it")
sys.exit(bool(wrong))
