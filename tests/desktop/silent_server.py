"""Takes connections on a port of its own, and never says a word.

In the folder that is named it writes the number of the port, and "asked" when somebody has come."""

import pathlib
import socket
import sys


def main():
    folder = pathlib.Path(sys.argv[1])
    server = socket.create_server(("127.0.0.1", 0))
    unfinished = folder / "port.new"
    unfinished.write_text(str(server.getsockname()[1]))
    unfinished.rename(folder / "port")
    connections = []
    while True:
        connections.append(server.accept())
        (folder / "asked").touch()


if __name__ == "__main__":
    main()
