"""Ein Regler zum Ausprobieren: antwortet auf Version, Lesen und Schreiben."""
import os
import pty
import tty

words = {}


def checksum(text):
    return "%02X" % (sum(text.encode("ascii")) % 256)


def reply(request):
    if request[:5] != "#0102" or request[-2:] != checksum(request[:-2]):
        return None  # nicht für diesen Regler, oder verfälscht: schweigen
    command = request[5:-2]
    if command == "v00":
        answer = "10102vHZL-0078"
    elif command[0] == "R":
        answer = "10102R" + words.get(command[1:5], "0000")
    elif command[0] == "W":
        words[command[1:5]] = command[5:9]
        answer = "10102W"
    else:
        answer = "10102?04"  # falsches Kennzeichen
    return answer + checksum(answer) + "\r"


controller, line = pty.openpty()
tty.setraw(line)
print(os.ttyname(line), flush=True)
received = ""
while True:
    received += os.read(controller, 1000).decode("ascii")
    while "\r" in received:
        request, received = received.split("\r", 1)
        answer = reply(request)
        if answer:
            os.write(controller, answer.encode("ascii"))
