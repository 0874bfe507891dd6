# Every target installs the Debian packages that it needs and this machine lacks (as root or with sudo; otherwise it
# prints the line to run). The work itself is done by CMake presets and the scripts in tools/.

SHELL := /bin/bash
.DEFAULT_GOAL := help
.PHONY: help demo player player-picture pictures docs test test-full test-x86 build package bench fuzz soak coverage \
        check-samples lint format clean

JOBS ?= $(shell nproc)
export JOBS

help:
	@echo "make demo       pictures of the controls fed with a recording: build/demo/*.png"
	@echo "make player     opens the player: the three controls, their properties, presets, sound"
	@echo "make player-picture   pictures of the player's window: build/player/*.png"
	@echo "make pictures   all pictures of the pages anew, but for the benchmarks' drawing: docs/images"
	@echo "make docs       the site of all pages, checked: build/docs/site"
	@echo "make test       the quick tests: native, sanitizers, Windows 64-bit under Wine"
	@echo "make test-full  all tests, the 32-bit ones too"
	@echo "make test-x86   the 32-bit tests, in a 32-bit Wine of their own"
	@echo "make build      the 64-bit and the 32-bit libraries: build/x64/bin, build/x86/bin"
	@echo "make package    one zip and one installer: build/package"
	@echo "make bench      times the portable core against its plain operations, FFTW and KissFFT, and the controls: tables"
	@echo "make fuzz       every fuzzer for FUZZ_SECONDS (60), or for FUZZ_RUNS inputs: a table"
	@echo "make soak       random lives of the controls for SOAK_SECONDS (600), and what they leave behind"
	@echo "make coverage   line and branch coverage of the portable core"
	@echo "make check-samples  compiles the samples in other languages, as far as Debian can"
	@echo "make lint       formatting, clang-tidy, shell scripts, include arrows"
	@echo "make format     formats the sources"
	@echo "make clean      removes build/"

build:
	@tools/bootstrap.sh build
	@tools/build x64 QELAudioVisualization4 AudioBlocks
	@tools/build x86 QELAudioVisualization4 AudioBlocks

package:
	@tools/bootstrap.sh build package
	@tools/package

test:
	@tools/bootstrap.sh build test
	@tools/run-tests quick

test-full:
	@tools/bootstrap.sh build test test-full package
	@tools/run-tests full

test-x86:
	@tools/bootstrap.sh build test
	@tools/test-x86

SOAK_SECONDS ?= 600
soak:
	@tools/bootstrap.sh build test
	@tools/build x64 soak
	@tools/soak $(SOAK_SECONDS) $(SOAK_SEED)

demo:
	@tools/bootstrap.sh build demo
	@tools/build x64 QELAudioVisualization4 avdemo tutorial_picture
	@tools/run-demo

docs:
	@tools/bootstrap.sh build test docs
	@tools/run-docs

player:
	@tools/bootstrap.sh build player
	@tools/build x64 QELAudioVisualization4 avplayer
	@tools/run-player $(WAV)

player-picture:
	@tools/bootstrap.sh build player player-picture
	@tools/build x64 QELAudioVisualization4 avplayer
	@tools/player-picture

pictures: demo player-picture
	@tools/build x64 AudioBlocks describe_controls
	@tools/refresh-images
	@tools/make-reference --pictures
	@tools/wine-stop x64

bench:
	@tools/bootstrap.sh build bench
	@tools/build bench core_bench
	@tools/bench --write
	@tools/build x64 clock_bench control_bench
	@tools/bench --windows --write
	@tools/bench-controls --write

fuzz:
	@tools/bootstrap.sh fuzz
	@tools/build fuzz
	@tools/fuzz

coverage:
	@tools/bootstrap.sh coverage
	@tools/coverage

check-samples:
	@tools/bootstrap.sh samples
	@tools/check-samples

lint:
	@tools/bootstrap.sh build lint
	@tools/lint

format:
	@tools/bootstrap.sh lint
	@tools/format

clean:
	@tools/wine-stop
	rm -rf build
