# Stands for OpenWrt's rules.mk: the names that packaging/openwrt/Makefile uses of it.
INCLUDE_DIR := $(TOPDIR)/include
BUILD_DIR ?= $(TOPDIR)/build_dir
INSTALL_DIR := install -d -m0755
INSTALL_BIN := install -m0755
INSTALL_DATA := install -m0644
CP := cp -fpR
SHELL := /bin/bash
