# The front door. Everything below is a script in tools/ that can be called by itself.
.DEFAULT_GOAL := help
.PHONY: help run test demo package bench pictures format check sanitize thread fuzz clean
MAKEFLAGS += --no-print-directory

help:
	@echo "make run       install what is missing, build, start the guard (ARGS=\"--plain\" passes options)"
	@echo "make demo      a phone, a laptop and a runaway download inside this machine, frozen within a minute"
	@echo "make test      build and run the whole test suite"
	@echo "make package   a Debian package of it, in build/package"
	@echo "make bench     what watching costs, beside the usual tools"
	@echo "make pictures  pictures of every view, light and dark, into build/pictures"
	@echo "make format    lay out the code with clang-format"
	@echo "make check     layout of the code, headers, clang-tidy, shellcheck"
	@echo "make sanitize  the test suite under AddressSanitizer and UndefinedBehaviorSanitizer"
	@echo "make thread    the test suite under ThreadSanitizer"
	@echo "make fuzz      a minute of coverage-guided fuzzing for each target (SECONDS=600 for longer)"
	@echo "make clean     remove everything that was built"

run:
	@tools/install-packages run
	@tools/run $(ARGS)

demo:
	@tools/install-packages run lab
	@tools/lab/demo

test:
	@tools/install-packages run lab test
	@tools/test dev

package:
	@tools/install-packages run package
	@tools/package

bench:
	@tools/install-packages run lab test
	@tools/bench

pictures:
	@tools/install-packages run test
	@tools/make-pictures

format:
	@tools/install-packages check
	@tools/format

check:
	@tools/install-packages run lab test check
	@tools/check

sanitize thread:
	@tools/install-packages run lab test
	@tools/test $@

fuzz:
	@tools/install-packages run lab test check
	@tools/fuzz $(SECONDS)

clean:
	@rm -rf build
