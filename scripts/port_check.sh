#!/usr/bin/env bash
# port_check.sh: whether direct access really drives a parallel port. Runs norvik-cli in a virtual
# machine (software emulation, no right on this computer is needed beyond installing packages) that
# has an emulated port at 888, for both ways of access and with and without the right to them, and
# compares what the program recorded with what the emulated port saw. Files in out/port_check. Ends
# with a verdict; status 1 on any difference. About a minute after the first call.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
work=$PWD/out/port_check
started=$SECONDS
step() { echo "== $1 (after $((SECONDS - started)) s)"; }

step "Packages"
install_missing "${build_packages[@]}" python3 qemu-system-x86 busybox-static cpio libcap2-bin util-linux
mkdir -p "$work/kernel"

# The usual kernel: the smaller one for clouds has no /dev/port.
step "Kernel of the virtual machine"
kernel=$(find "$work/kernel" -name 'vmlinuz-*' | head -1)
if [ -z "$kernel" ]; then
  package=$(apt-cache depends linux-image-amd64 | sed -n 's/^ *Depends: \(linux-image-[0-9].*\)/\1/p' | head -1)
  [ -n "$package" ] || { echo "No package linux-image-amd64 is listed. Refresh the lists: apt-get update" >&2; exit 1; }
  (cd "$work" && apt-get download -qq "$package" 2>/dev/null) ||
    { echo "The package $package could not be fetched. Refresh the lists: apt-get update" >&2; exit 1; }
  dpkg-deb --fsys-tarfile "$work/$package"_*.deb | tar -x -C "$work/kernel" --wildcards './boot/*'
  rm "$work/$package"_*.deb
  kernel=$(find "$work/kernel" -name 'vmlinuz-*' | head -1)
fi
for option in CONFIG_X86_IOPL_IOPERM CONFIG_DEVPORT; do
  grep -q "^$option=y" "$work"/kernel/boot/config-* ||
    { echo "The kernel $kernel has no $option: remove $work/kernel and name another package here." >&2; exit 1; }
done

step "norvik-cli without Qt"
build_preset companion --target norvik-cli norvik-port port_probe

step "Files of the virtual machine"
root=$work/root
rm -rf "$root"
mkdir -p "$root"/{bin,check,etc}
programs=(build/companion/src/cli/norvik-cli build/companion/src/port_helper/norvik-port build/companion/tests/port_probe
  "$(command -v setpriv)" "$(PATH=$PATH:/usr/sbin:/sbin command -v setcap)" "$(command -v busybox)")
cp "${programs[@]}" "$root/check/"
# Where the shell of the virtual machine, which has a smaller setpriv of its own, looks first.
mv "$root"/check/{norvik-cli,norvik-port,port_probe,busybox} "$root/bin/"
for program in "${programs[@]}"; do ldd "$program" 2>/dev/null || true; done |
  grep -oE '/[^ ]+' | sort -u | while read -r library; do
    mkdir -p "$root$(dirname "$library")"
    cp -L "$library" "$root$library"
  done
cp scripts/port_check/{sample.gc,machine.ini} "$root/check/"
install -m 755 scripts/port_check/guest_init.sh "$root/init"
printf 'root:x:0:0::/root:/bin/sh\nuser:x:1000:1000::/tmp:/bin/sh\n' >"$root/etc/passwd"
printf 'root:x:0:\nkmem:x:15:\nuser:x:1000:\n' >"$root/etc/group"
(cd "$root" && find . | cpio --quiet -o -H newc -R 0:0 | gzip -1) >"$work/initramfs.gz"

# A second port at 900 shows the dummy writes. The trace has every access of the bus, the two ports
# and the marks between the cases.
step "Virtual machine"
rm -f "$work"/{console,results,trace}.txt
timeout 600 qemu-system-x86_64 -M pc -accel tcg -m 512 -nodefaults -display none -no-reboot \
  -kernel "$kernel" -initrd "$work/initramfs.gz" \
  -append "console=ttyS0 quiet panic=-1 nokaslr mitigations=off clocksource=tsc tsc=reliable" \
  -serial "file:$work/console.txt" -serial "file:$work/results.txt" \
  -chardev null,id=first -device isa-parallel,iobase=0x378,irq=7,chardev=first \
  -chardev null,id=second -device isa-parallel,iobase=0x384,irq=5,chardev=second \
  -trace parallel_ioport_write -trace memory_region_ops_read -trace memory_region_ops_write \
  -D "$work/trace.txt" || { echo "The virtual machine failed or took too long: see $work/console.txt" >&2; exit 1; }

step "Comparison"
python3 scripts/port_check/compare.py "$work/results.txt" "$work/trace.txt"
