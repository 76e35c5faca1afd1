#!/bin/busybox sh
# The first process of the virtual machine of port_check.sh: runs every case and sends what it printed
# and recorded to the second serial line. A case stands in the port trace between two writes of its
# number to port 752, which no device decodes.
/bin/busybox mkdir -p /proc /dev /tmp /bin /root
/bin/busybox --install -s /bin
export PATH=/bin:/usr/bin:/usr/sbin HOME=/root
mount -t proc proc /proc
mount -t devtmpfs dev /dev
chmod 1777 /tmp
stty -F /dev/ttyS1 raw -echo 115200
number=0

mark() { printf "\\$(printf %03o "$number")" | dd of=/dev/port bs=1 seek=752 conv=notrunc 2>/dev/null; }
# send KIND NAME FILE: the lines of a file between two lines that name it.
send() {
  { echo "=== $1 $2"; cat "$3"; echo "=== end"; } >/dev/ttyS1
}
# try NAME COMMAND...: one case.
try() {
  local name=$1
  shift
  number=$((number + 1))
  rm -f /tmp/ports.csv
  mark
  "$@" </dev/null >/tmp/out.txt 2>&1
  echo "status $?" >>/tmp/out.txt
  mark
  send "case $number" "$name" /tmp/out.txt
  [ -f /tmp/ports.csv ] && send "ports $number" "$name" /tmp/ports.csv
}
# run ACCESS WAY [OPTION...]: the sample with this Port_Access and Parallel_IODLL.
run() {
  local access=$1 way=$2 home=/tmp/home$number
  shift 2
  mkdir -p "$home"
  printf '[Platform]\nPort_Access=%s\n' "$access" >"$home/Norvik.Ini"
  cp /check/machine.ini "$home/machine.ini"
  chmod -R a+rwX "$home"
  $as ${through:-} ${program:-/bin/norvik-cli} --home "$home" --machine "$home/machine.ini" \
    --set "Parallel Setup.Parallel_IODLL=$way" "$@" \
    run /check/sample.gc --clock real --ports /tmp/ports.csv --no-pause
}
user="/check/setpriv --reuid=1000 --regid=1000 --clear-groups --inh-caps=-all"
member="/check/setpriv --reuid=1000 --regid=1000 --groups=15 --inh-caps=-all"

as=
try root-1 run Direct 1
try root-2 run Direct 2
try auto-1 run Auto 1
leave_high() { printf '\025' | dd of=/dev/port bs=1 seek=888 conv=notrunc 2>/dev/null; }
leave_high
try left-high-1 run Direct 1
leave_high
try left-high-2 run Direct 2
try estop-1 run Direct 1 --set "Parallel Setup.Parallel_Input_Bit_Invert_0=False"
try limit-2 run Direct 2 --set "Parallel Setup.Parallel_Input_Bit_Invert_1=True"
try probe-1 port_probe 1 /tmp/ports.csv
try probe-2 port_probe 2 /tmp/ports.csv

as="/check/setpriv --bounding-set=-sys_rawio --inh-caps=-sys_rawio"
try bounded-1 run Direct 1
try bounded-2 run Direct 2
try bounded-auto-1 run Auto 1
as=$user
try user-1 run Direct 1
try user-2 run Direct 2
try user-auto-1 run Auto 1
try user-auto-2 run Auto 2
# As most systems set the device up: the group reads only.
chown 0:15 /dev/port
chmod 640 /dev/port
as=$member
try member-reads-2 run Direct 2
chmod 660 /dev/port
try member-2 run Direct 2
as=$user
try stranger-2 run Direct 2

# What the words of a refusal say, word for word.
as=$user
try words run Direct 1
command=$(sed -n 's/.*command "sudo \(setcap [^"]*\)".*/\1/p' /tmp/out.txt)
try setcap /check/$command
through=/bin/norvik-port
program=norvik-cli
try helped-1 run Direct 1
try helped-auto-1 run Auto 1
as=$member
try helped-2 run Direct 2
# The registers of the port are handed over, and nothing else: neither other addresses nor rights.
as=$user
try foreign-1 run Direct 1 --set "Parallel Setup.Output_Port_13=3321" --set "Parallel Setup.Parallel_Output_Bit_13=0"
cp /bin/busybox /tmp/norvik-cli
try only-ours $user /bin/norvik-port /tmp/norvik-cli sh
# A plugin of the caller's would run with the capabilities of a program that has them.
through=
program=/bin/norvik-cli
/check/setcap cap_sys_rawio+ep /bin/norvik-cli
try capable-itself run Direct 1

echo "=== all done" >/dev/ttyS1
sleep 1
poweroff -f
